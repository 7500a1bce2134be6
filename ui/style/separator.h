// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QWidget>

namespace vantoro {

/// A thin horizontal line between two widgets.
class Separator final : public QWidget {
    Q_OBJECT

public:
    explicit Separator(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace vantoro

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QWidget>

namespace vantoro {

/// The program's icon.
class HeaderIcon final : public QWidget {
    Q_OBJECT

public:
    explicit HeaderIcon(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace vantoro

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QCheckBox>

namespace vantoro {

/// A check box drawn as a switch.
class ToggleSwitch final : public QCheckBox {
    Q_OBJECT

public:
    explicit ToggleSwitch(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool hitButton(const QPoint& position) const override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

} // namespace vantoro

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QSlider>

namespace vantoro {

/// A horizontal slider with a mark at one of its values. A double click sets the usual value.
class VolumeSlider final : public QSlider {
    Q_OBJECT

public:
    VolumeSlider(int usual, int marked, QWidget* parent = nullptr);

protected:
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    int usual_;
    int marked_;
};

} // namespace vantoro

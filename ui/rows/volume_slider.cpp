// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/rows/volume_slider.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QStyle>
#include <QtWidgets/QStyleOptionSlider>

#include "ui/rows/wheel_passer.h"
#include "ui/style/tones.h"

namespace vantoro {

namespace {

constexpr double markWidth = 1.5;

} // namespace

VolumeSlider::VolumeSlider(int usual, int marked, QWidget* parent)
    : QSlider(Qt::Horizontal, parent), usual_(usual), marked_(marked) {
    new WheelPasser(*this);
}

void VolumeSlider::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        setValue(usual_);
    }
}

void VolumeSlider::paintEvent(QPaintEvent* event) {
    QStyleOptionSlider option;
    initStyleOption(&option);
    const auto groove =
        style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderGroove, this);
    const int handle = style()->pixelMetric(QStyle::PM_SliderLength, &option, this);
    const int way = QStyle::sliderPositionFromValue(minimum(), maximum(), marked_,
                                                    groove.width() - handle, option.upsideDown);
    const double middle = groove.left() + handle / 2.0 + way;
    // Beneath the groove and the handle.
    QPainter(this).fillRect(QRectF(middle - markWidth / 2, 0, markWidth, height()),
                            toneColour(Tone::secondary, palette()));
    QSlider::paintEvent(event);
}

} // namespace vantoro

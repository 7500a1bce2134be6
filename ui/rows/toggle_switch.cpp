// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/rows/toggle_switch.h"

#include <QtGui/QPainter>

#include "ui/style/enter_key.h"
#include "ui/style/metrics.h"
#include "ui/style/tones.h"

namespace vantoro {

namespace {

constexpr int trackWidth = 38;
constexpr int trackHeight = 22;
constexpr double knobMargin = 2.5;
constexpr double disabledOpacity = 0.45;

} // namespace

ToggleSwitch::ToggleSwitch(QWidget* parent) : QCheckBox(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setCursor(Qt::PointingHandCursor);
}

QSize ToggleSwitch::sizeHint() const {
    return {trackWidth + 2 * ringMargin, trackHeight + 2 * ringMargin};
}

QSize ToggleSwitch::minimumSizeHint() const {
    return sizeHint();
}

bool ToggleSwitch::hitButton(const QPoint& position) const {
    return rect().contains(position);
}

void ToggleSwitch::keyPressEvent(QKeyEvent* event) {
    if (!clickByEnter(*this, *event)) {
        QCheckBox::keyPressEvent(event);
    }
}

void ToggleSwitch::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled() ? 1 : disabledOpacity);
    const QRectF track(ringMargin, ringMargin, trackWidth, trackHeight);
    const auto accent = toneColour(Tone::accent, palette());
    const auto ground = isChecked() ? accent : offColour(palette());
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawRoundedRect(track, trackHeight / 2.0, trackHeight / 2.0);

    const double knob = trackHeight - 2 * knobMargin;
    const bool atRight = isChecked() == (layoutDirection() == Qt::LeftToRight);
    const double left = atRight ? track.right() - knobMargin - knob : track.left() + knobMargin;
    painter.setBrush(symbolOn(ground));
    painter.drawEllipse(QRectF(left, track.top() + knobMargin, knob, knob));
    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(accent, 1.5));
        painter.drawRoundedRect(track.adjusted(-2, -2, 2, 2), trackHeight / 2.0 + 2,
                                trackHeight / 2.0 + 2);
    }
}

} // namespace vantoro

// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/status_badge.h"

#include <QtGui/QAccessible>
#include <QtGui/QPainter>

namespace vantoro {

namespace {

constexpr int diameter = 42;
constexpr int symbolSize = 22; // of which the drawing fills 17
constexpr int turnMilliseconds = 1000;

} // namespace

StatusBadge::StatusBadge(QWidget* parent) : QWidget(parent) {
    setFixedSize(diameter, diameter);
    turn_.setStartValue(0);
    turn_.setEndValue(360);
    turn_.setDuration(turnMilliseconds);
    turn_.setLoopCount(-1);
    connect(&turn_, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
}

void StatusBadge::setStatus(Symbol symbol, Tone tone) {
    symbol_ = symbol;
    tone_ = tone;
    update();
}

void StatusBadge::setBusy(bool busy) {
    if (busy == busy_) {
        return;
    }
    busy_ = busy;
    QAccessible::State changed;
    changed.busy = true;
    QAccessibleStateChangeEvent event(this, changed);
    QAccessible::updateAccessibility(&event);
    busy ? turn_.start() : turn_.stop();
    update();
}

void StatusBadge::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto colour = toneColour(tone_, palette());
    painter.setPen(Qt::NoPen);
    painter.setBrush(tintOf(colour, palette()));
    painter.drawEllipse(rect());
    const QRect middle((diameter - symbolSize) / 2, (diameter - symbolSize) / 2, symbolSize,
                       symbolSize);
    if (busy_) {
        painter.setPen(QPen(colour, 2.5, Qt::SolidLine, Qt::RoundCap));
        painter.setBrush(Qt::NoBrush);
        constexpr int degree = 16;
        painter.drawArc(middle.adjusted(2, 2, -2, -2), -turn_.currentValue().toInt() * degree,
                        270 * degree);
    } else {
        painter.drawPixmap(middle, symbolPixmap(symbol_, colour, symbolSize, devicePixelRatioF()));
    }
}

} // namespace vantoro

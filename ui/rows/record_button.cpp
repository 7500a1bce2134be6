// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/rows/record_button.h"

#include <algorithm>

#include <QtGui/QPainter>

#include "ui/style/metrics.h"
#include "ui/style/symbols.h"

namespace vantoro {

namespace {

constexpr int leastWidth = 138 + 2 * ringMargin;
constexpr int leastHeight = 36;
constexpr int symbolSize = 18;
constexpr int gap = 7;
constexpr int margin = 16;
constexpr double radius = 8;

QFont labelFont(QFont base) {
    if (base.pointSizeF() > 0) {
        base.setPointSizeF(base.pointSizeF() * 14 / 13);
    }
    base.setWeight(QFont::DemiBold);
    return base;
}

} // namespace

RecordButton::RecordButton(QWidget* parent) : QPushButton(parent) {
    setFont(labelFont(font()));
    setMinimumSize(leastWidth, leastHeight);
    setAutoDefault(true); // Enter presses it too
    setCursor(Qt::PointingHandCursor);
}

void RecordButton::setTexts(const QString& start, const QString& stop) {
    start_ = start;
    stop_ = stop;
    updateGeometry();
    setStops(stops_);
}

void RecordButton::setStops(bool stops) {
    stops_ = stops;
    setText(stops ? stop_ : start_);
    update();
}

void RecordButton::setUsable(bool usable) {
    const bool hasIt = window()->focusWidget() == this;
    setEnabled(usable);
    auto* const focused = window()->focusWidget();
    if (hasIt && focused != nullptr && focused != this) {
        focused->clearFocus(); // the toolkit moves it on to the next control
    } else if (focused == nullptr) {
        setFocus();
    }
}

QSize RecordButton::sizeHint() const {
    const auto metrics = fontMetrics();
    const int label =
        std::max(metrics.horizontalAdvance(start_), metrics.horizontalAdvance(stop_)) + symbolSize +
        gap;
    return {std::max(leastWidth, label + 2 * (margin + ringMargin)),
            std::max(leastHeight, metrics.height() + 2 * (ringMargin + 6))};
}

ButtonColours RecordButton::colours() const {
    if (!isEnabled()) {
        return disabledButtonColours(palette());
    }
    auto colours = buttonColours(stops_ ? Tone::recording : Tone::accent, palette());
    // Away from the ink, so that it stays readable.
    const int percent = isDown() ? 120 : underMouse() ? 108 : 100;
    colours.ground =
        isDark(palette()) ? colours.ground.lighter(percent) : colours.ground.darker(percent);
    return colours;
}

void RecordButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto [ground, ink] = colours();
    const auto body = QRectF(rect()).adjusted(ringMargin, ringMargin, -ringMargin, -ringMargin);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawRoundedRect(body, radius, radius);
    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(ground, 1.5));
        painter.drawRoundedRect(body.adjusted(-2, -2, 2, 2), radius + 2, radius + 2);
    }
    const int textWidth = fontMetrics().horizontalAdvance(text());
    const int left = (width() - symbolSize - gap - textWidth) / 2;
    painter.drawPixmap(QRect(left, (height() - symbolSize) / 2, symbolSize, symbolSize),
                       symbolPixmap(stops_ ? Symbol::stop : Symbol::recordCircle, ink, symbolSize,
                                    devicePixelRatioF()));
    painter.setPen(ink);
    painter.drawText(QRect(left + symbolSize + gap, 0, textWidth + 1, height()), Qt::AlignVCenter,
                     text());
}

} // namespace vantoro

// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/meters/level_bar.h"

#include <algorithm>

#include <QtGui/QPainter>

#include "ui/style/percentage.h"

namespace vantoro {

namespace {

constexpr int barWidth = 76;
constexpr int barHeight = 6;
constexpr double radius = 2;
constexpr float trackOpacity = 0.2F;

} // namespace

LevelBar::LevelBar(Tone tone, QWidget* parent) : QProgressBar(parent), tone_(tone) {
    setFixedSize(barWidth, barHeight);
    setRange(0, 100);
    setValue(0);
    setTextVisible(false);
}

void LevelBar::setLevel(double level) {
    level_ = std::clamp(level, 0.0, 1.0);
    setValue(percentage(level_));
    update();
}

void LevelBar::setTrouble(const QString& trouble) {
    isInTrouble_ = !trouble.isEmpty();
    setAccessibleDescription(trouble);
    update();
}

void LevelBar::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    if (isInTrouble_) { // a solid bar of any colour would look like a level
        QPen dashes(toneColour(Tone::attention, palette()), barHeight, Qt::CustomDashLine,
                    Qt::FlatCap);
        dashes.setDashPattern({0.5, 0.5}); // relative to the bar's height
        painter.setPen(dashes);
        painter.drawLine(QPointF(0, barHeight / 2.0), QPointF(barWidth, barHeight / 2.0));
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    auto track = toneColour(Tone::secondary, palette());
    track.setAlphaF(trackOpacity);
    painter.setBrush(track);
    painter.drawRoundedRect(rect(), radius, radius);
    painter.setBrush(toneColour(tone_, palette()));
    painter.drawRoundedRect(QRectF(0, 0, barWidth * level_, barHeight), radius, radius);
}

} // namespace vantoro

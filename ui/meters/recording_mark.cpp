// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/meters/recording_mark.h"

#include <cmath>

#include <QtGui/QPainter>

namespace vantoro {

void drawRecordingMark(QImage& symbol, const QColor& color) {
    constexpr int middleGrey = 128;
    const double unit = symbol.width() / 24.0;
    const double diameter = std::round(8.5 * unit); // 6 of 16 pixels
    const double gap = std::max(1.0, std::round(1.5 * unit));
    QPainter painter(&symbol);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setCompositionMode(QPainter::CompositionMode_Clear);
    painter.setBrush(Qt::black);
    painter.drawEllipse(QRectF(-gap, -gap, diameter + 2 * gap, diameter + 2 * gap));
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setBrush(color.lightness() < middleGrey ? Qt::white : Qt::black);
    painter.drawEllipse(QRectF(-gap, -gap, diameter + 2 * gap, diameter + 2 * gap));
    painter.setBrush(color);
    painter.drawEllipse(QRectF(0, 0, diameter, diameter));
}

} // namespace vantoro

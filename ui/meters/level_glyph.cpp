// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/meters/level_glyph.h"

#include <algorithm>
#include <cmath>

#include <QtGui/QPainter>
#include <QtGui/QPainterPathStroker>

namespace vantoro {

namespace {

constexpr double lowestShownLevel = 0.05;
constexpr double faint = 0.28;
constexpr double halfLit = 0.62;
constexpr int waves = 3;
constexpr double lineWidth = 1.3;
constexpr QRgb darkLine = 0xff000000;
constexpr QRgb lightLine = 0xffffffff;

/// Maps a 24-unit square to the pixels of a picture.
class Grid {
public:
    explicit Grid(int size) : size_(size) {}

    double exact(double units) const { return units * size_ / 24.0; }

    /// Rounded to a boundary between pixels.
    double edge(double units) const { return std::round(exact(units)); }

    /// A length in whole pixels, at least 1.
    double whole(double units) const { return std::max(1.0, edge(units)); }

    double middle() const { return size_ / 2.0; }

    double size() const { return size_; }

private:
    int size_;
};

QPainterPath stroked(const QPainterPath& line, double width) {
    QPainterPathStroker stroker;
    stroker.setWidth(width);
    stroker.setCapStyle(Qt::RoundCap);
    stroker.setJoinStyle(Qt::RoundJoin);
    return stroker.createStroke(line).simplified();
}

/// An arc around the point, open to the left and symmetric about the horizontal.
QPainterPath wave(QPointF centre, double radius, double degrees) {
    const QRectF circle(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius);
    QPainterPath path;
    path.arcMoveTo(circle, -degrees);
    path.arcTo(circle, -degrees, 2 * degrees);
    return path;
}

QPainterPath roundedBox(const QRectF& box, double radius) {
    QPainterPath path;
    path.addRoundedRect(box, radius, radius);
    return path;
}

/// The box and the cone, with slightly rounded corners.
QPainterPath loudspeakerBody(const Grid& grid) {
    const double middle = grid.middle();
    const double halfBox = middle - grid.edge(8);
    const double halfCone = middle - grid.edge(3);
    const double round = grid.exact(1.6);
    const double left = grid.edge(1) + round / 2;
    const double neck = grid.edge(5);
    const double right = grid.edge(10) - round / 2;
    const double boxAbove = halfBox - round / 2;
    const double coneAbove = halfCone - round / 2;
    QPainterPath cone(QPointF(left, middle - boxAbove));
    cone.lineTo(neck, middle - boxAbove);
    cone.lineTo(right, middle - coneAbove);
    cone.lineTo(right, middle + coneAbove);
    cone.lineTo(neck, middle + boxAbove);
    cone.lineTo(left, middle + boxAbove);
    cone.closeSubpath();
    return cone.united(stroked(cone, round));
}

LevelGlyph loudspeaker(const Grid& grid) {
    LevelGlyph glyph{.body = loudspeakerBody(grid), .parts = {}};
    const double width = grid.exact(1.9);
    const QPointF centre(grid.edge(8), grid.middle());
    const double outermost = grid.size() - grid.edge(0.6) - width / 2 - centre.x();
    for (int i = 0; i < waves; ++i) {
        const double radius = outermost - grid.exact(3.9) * (waves - 1 - i);
        glyph.parts.push_back({.outline = stroked(wave(centre, radius, 45), width),
                               .halfLitAt = 2 * i + 1,
                               .litAt = 2 * i + 2});
    }
    return glyph;
}

/// The capsule, and the arc that holds it on its stand.
QPainterPath microphoneBody(const Grid& grid, double line) {
    const double top = grid.edge(1);
    const double bottom = grid.size() - top;
    // Odd or even like the stand's width, so that both are centred and all edges are sharp.
    const double capsule = line + 2 * std::round((grid.exact(6.4) - line) / 2);
    const double bow = capsule + 4 * line;
    const double left = grid.edge(0.8);
    const double middle = left + bow / 2;
    const double capsuleEnd = grid.edge(14);
    const double bowBegin = grid.edge(10.5);
    const double bowEnd = bottom - 2 * line;

    QPainterPath body =
        roundedBox({middle - capsule / 2, top, capsule, capsuleEnd - top}, capsule / 2);
    QPainterPath holder = roundedBox({left, top, bow, bowEnd - top}, bow / 2);
    holder -= roundedBox({left + line, top, bow - 2 * line, bowEnd - line - top}, bow / 2 - line);
    QPainterPath below;
    below.addRect(left, bowBegin, bow, bowEnd - bowBegin);
    QPainterPath stand;
    stand.addRect(middle - line / 2, bowEnd - line / 2, line, bottom - bowEnd);
    QPainterPath foot;
    foot.addRect(middle - capsule / 2, bottom - line, capsule, line);
    return body | (holder & below) | stand | foot;
}

LevelGlyph microphone(const Grid& grid) {
    LevelGlyph glyph{.body = microphoneBody(grid, grid.whole(1.8)), .parts = {}};
    const double top = grid.edge(1);
    const double width = grid.whole(4.6);
    const double height = grid.size() - 2 * top;
    const double left = grid.size() - grid.edge(0.8) - width;
    const auto column = roundedBox({left, top, width, height}, grid.exact(1.2));
    double above = top + height;
    for (int stage = 1; stage <= levelStages; ++stage) {
        const double end = top + height - std::round(height * stage / levelStages);
        QPainterPath slice;
        slice.addRect(left, end, width, above - end);
        glyph.parts.push_back({.outline = column & slice, .halfLitAt = stage, .litAt = stage});
        above = end;
    }
    return glyph;
}

double strength(const LevelGlyph::Part& part, int stage) {
    if (stage >= part.litAt) {
        return 1;
    }
    return stage >= part.halfLitAt ? halfLit : faint;
}

QColor faded(QColor color, double strength) {
    color.setAlphaF(color.alphaF() * static_cast<float>(strength));
    return color;
}

/// A line around the body and each part, outside of all of them; about a pixel at 16 pixels. As
/// strong as what it surrounds: on a panel of the symbol's colour it alone shows the level.
void drawLines(QPainter& painter, const LevelGlyph& glyph, int stage, double width,
               const QColor& color) {
    QPainterPath drawn = glyph.body;
    for (const auto& part : glyph.parts) {
        drawn |= part.outline;
    }
    const auto draw = [&](const QPainterPath& outline, double strength) {
        const auto line = stroked(outline, 2 * width);
        painter.fillPath(line - drawn, faded(color, strength));
        drawn |= line;
    };
    draw(glyph.body, 1);
    for (const auto& part : glyph.parts) {
        draw(part.outline, strength(part, stage));
    }
}

} // namespace

int stageOf(double level) {
    // In this order, NaN counts as silence.
    const double shown = std::min(std::max(lowestShownLevel, level), 1.0);
    return static_cast<int>(std::ceil(shown * levelStages));
}

LevelGlyph outlineOf(LevelSymbol symbol, int size) {
    const Grid grid(size);
    return symbol == LevelSymbol::loudspeaker ? loudspeaker(grid) : microphone(grid);
}

QImage drawLevelGlyph(LevelSymbol symbol, int stage, int size, const QColor& color) {
    const auto glyph = outlineOf(symbol, size);
    QImage image(size, size, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(glyph.body, color);
    for (const auto& part : glyph.parts) {
        painter.fillPath(part.outline, faded(color, strength(part, stage)));
    }
    return image;
}

QImage drawOutlinedLevelGlyph(LevelSymbol symbol, int stage, int size, const QColor& color) {
    constexpr int middleGrey = 128;
    QImage image(size, size, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::Antialiasing);
    drawLines(painter, outlineOf(symbol, size), stage, Grid(size).exact(lineWidth),
              QColor::fromRgba(color.lightness() < middleGrey ? lightLine : darkLine));
    painter.drawImage(0, 0, drawLevelGlyph(symbol, stage, size, color));
    return image;
}

} // namespace vantoro

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include <QtGui/QColor>
#include <QtGui/QImage>
#include <QtGui/QPainterPath>

namespace vantoro {

enum class LevelSymbol : std::uint8_t {
    loudspeaker, ///< with three waves
    microphone,  ///< with a column beside it that fills from the bottom
};

/// The number of stages that a symbol can show.
inline constexpr int levelStages = 6;

/// The edge lengths, in pixels, that desktops request.
inline constexpr std::array levelGlyphSizes{16, 18, 22, 24, 32, 36, 44, 48};

/// The stage, 1 to `levelStages`, of a level of 0 to 1; clamps other levels. Never 0, so that a
/// symbol is never empty.
int stageOf(double level);

/// A symbol's outline in pixels; straight edges lie between pixels.
struct LevelGlyph {
    /// A part that lights up when the level reaches its stage.
    struct Part {
        QPainterPath outline;
        int halfLitAt; ///< equals `litAt` for a part that is never half lit
        int litAt;
    };

    QPainterPath body; ///< always lit
    std::vector<Part> parts;
};

LevelGlyph outlineOf(LevelSymbol symbol, int size);

/// The symbol in one colour on a transparent background; unlit parts are faint. Format_ARGB32.
QImage drawLevelGlyph(LevelSymbol symbol, int stage, int size, const QColor& color);

/// The same with thin lines of the opposite tone around the body and each part, so that both the
/// symbol and its level are visible on a panel of its own colour.
QImage drawOutlinedLevelGlyph(LevelSymbol symbol, int stage, int size, const QColor& color);

} // namespace vantoro

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
    microphone,  ///< with a column beside it that fills from below
};

/// In how many steps a symbol comes to be lit.
inline constexpr int levelStages = 6;

/// The edge lengths, in pixels, that desktops ask for.
inline constexpr std::array levelGlyphSizes{16, 18, 22, 24, 32, 36, 44, 48};

/// The stage of a level of 0 to 1: from 1 to `levelStages`, so that a symbol is never empty. What
/// is outside is shown as what is nearest.
int stageOf(double level);

/// A symbol's outline in pixels, its straight edges between them.
struct LevelGlyph {
    /// A part that the level lights, once it reaches the stage.
    struct Part {
        QPainterPath outline;
        int halfLitAt; ///< the same as `litAt` for a part that knows no half
        int litAt;
    };

    QPainterPath body; ///< always lit
    std::vector<Part> parts;
};

LevelGlyph outlineOf(LevelSymbol symbol, int size);

/// The symbol in one colour on nothing; what is not lit is faint. Format_ARGB32.
QImage drawLevelGlyph(LevelSymbol symbol, int stage, int size, const QColor& color);

} // namespace vantoro

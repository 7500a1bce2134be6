// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/meters/level_glyph.h"

#include <limits>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

const QColor white(Qt::white);

QImage draw(LevelSymbol symbol, int stage, int size) {
    return drawLevelGlyph(symbol, stage, size, white);
}

/// The lit area, in fully lit pixels.
double litArea(const QImage& image) {
    double area = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            area += qAlpha(image.pixel(x, y)) / 255.0;
        }
    }
    return area;
}

class LevelGlyphTest : public ::testing::TestWithParam<LevelSymbol> {};

INSTANTIATE_TEST_SUITE_P(Symbols, LevelGlyphTest,
                         ::testing::Values(LevelSymbol::loudspeaker, LevelSymbol::microphone));

TEST(LevelStageTest, everyLevelHasAStage) {
    struct Case {
        double level;
        int expected;
    };

    for (const auto& [level, expected] :
         {Case{0, 1}, Case{0.05, 1}, Case{0.06, 1}, Case{1.0 / 6, 1}, Case{0.17, 2}, Case{0.5, 3},
          Case{0.51, 4}, Case{0.84, 6}, Case{1, 6}, Case{1.7, 6}, Case{-1, 1},
          Case{std::numeric_limits<double>::infinity(), 6},
          Case{std::numeric_limits<double>::quiet_NaN(), 1}}) {
        EXPECT_EQ(stageOf(level), expected) << level;
    }
}

TEST_P(LevelGlyphTest, hasTheSizeThatWasAskedFor) {
    for (const int size : levelGlyphSizes) {
        EXPECT_EQ(draw(GetParam(), 1, size).size(), QSize(size, size));
    }
}

TEST_P(LevelGlyphTest, higherStageLightsMore) {
    for (const int size : levelGlyphSizes) {
        for (int stage = 2; stage <= levelStages; ++stage) {
            // at least one pixel, to be visible
            EXPECT_GE(litArea(draw(GetParam(), stage, size)),
                      litArea(draw(GetParam(), stage - 1, size)) + 1)
                << size << ' ' << stage;
        }
    }
}

TEST_P(LevelGlyphTest, whatIsLitStaysLit) {
    for (const int size : levelGlyphSizes) {
        for (int stage = 2; stage <= levelStages; ++stage) {
            const auto before = draw(GetParam(), stage - 1, size);
            const auto after = draw(GetParam(), stage, size);
            for (int i = 0; i < size * size; ++i) {
                EXPECT_LE(qAlpha(before.pixel(i % size, i / size)),
                          qAlpha(after.pixel(i % size, i / size)));
            }
        }
    }
}

TEST_P(LevelGlyphTest, liesWithinThePicture) {
    for (const int size : levelGlyphSizes) {
        const auto glyph = outlineOf(GetParam(), size);
        const QRectF bounds(0, 0, size, size);
        EXPECT_TRUE(bounds.contains(glyph.body.boundingRect())) << size;
        for (const auto& part : glyph.parts) {
            EXPECT_TRUE(bounds.contains(part.outline.boundingRect())) << size;
        }
    }
}

TEST_P(LevelGlyphTest, fillsMostOfThePicture) {
    for (const int size : levelGlyphSizes) {
        QRectF bounds;
        const auto glyph = outlineOf(GetParam(), size);
        bounds |= glyph.body.boundingRect();
        for (const auto& part : glyph.parts) {
            bounds |= part.outline.boundingRect();
        }
        EXPECT_GE(bounds.width(), 0.85 * size);
        EXPECT_GE(bounds.height(), 0.7 * size);
    }
}

TEST_P(LevelGlyphTest, partsDoNotLieOverEachOther) {
    for (const int size : levelGlyphSizes) {
        const auto glyph = outlineOf(GetParam(), size);
        QPainterPath covered = glyph.body;
        for (const auto& part : glyph.parts) {
            const auto shared = (covered & part.outline).boundingRect();
            EXPECT_LT(shared.width() * shared.height(), 0.01) << size;
            covered |= part.outline;
        }
    }
}

TEST_P(LevelGlyphTest, hasOneColor) {
    const QColor color(12, 34, 56);
    for (const int size : levelGlyphSizes) {
        const auto image = drawLevelGlyph(GetParam(), 3, size, color);
        for (int i = 0; i < size * size; ++i) {
            const QColor pixel = image.pixelColor(i % size, i / size);
            if (pixel.alpha() == 255) {
                EXPECT_EQ(pixel, color);
            }
        }
    }
}

TEST_P(LevelGlyphTest, unlitPartsAreFaintAndThere) {
    for (const int size : levelGlyphSizes) {
        const auto part = outlineOf(GetParam(), size).parts.back().outline;
        const auto image = draw(GetParam(), 1, size);
        // The strongest pixel, since the part may be only one pixel wide.
        int strongest = 0;
        const QRect place = part.boundingRect().toAlignedRect();
        for (int y = place.top(); y <= place.bottom(); ++y) {
            for (int x = place.center().x(); x <= place.right(); ++x) {
                strongest = std::max(strongest, qAlpha(image.pixel(x, y)));
            }
        }
        EXPECT_GT(strongest, 40) << size;
        EXPECT_LT(strongest, 90) << size;
    }
}

} // namespace
} // namespace vantoro::testing

// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/meters/level_pictures.h"

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

TEST(LevelPicturesTest, pictureComesInAllSizes) {
    LevelPictures pictures(Qt::white);
    const auto picture = pictures.picture(LevelSymbol::microphone, 0.3);
    ASSERT_EQ(picture.size(), levelGlyphSizes.size());
    for (std::size_t i = 0; i < levelGlyphSizes.size(); ++i) {
        EXPECT_EQ(picture[static_cast<int>(i)].width(), levelGlyphSizes[i]);
    }
}

TEST(LevelPicturesTest, levelsOfOneStageHaveOnePicture) {
    LevelPictures pictures(Qt::white);
    const auto picture = pictures.picture(LevelSymbol::loudspeaker, 0);
    EXPECT_EQ(pictures.picture(LevelSymbol::loudspeaker, 0.06), picture);
    EXPECT_NE(pictures.picture(LevelSymbol::loudspeaker, 0.5), picture);
    EXPECT_NE(pictures.picture(LevelSymbol::microphone, 0), picture);
}

TEST(LevelPicturesTest, picturesHaveTheColorOfTheMoment) {
    LevelPictures pictures(Qt::white);
    const auto before = pictures.picture(LevelSymbol::loudspeaker, 1);
    pictures.setColor(Qt::black);
    const auto after = pictures.picture(LevelSymbol::loudspeaker, 1);
    EXPECT_EQ(before, LevelPictures(Qt::white).picture(LevelSymbol::loudspeaker, 1));
    EXPECT_EQ(after, LevelPictures(Qt::black).picture(LevelSymbol::loudspeaker, 1));
}

QPalette palette(const QColor& text, const QColor& window) {
    QPalette made;
    made.setColor(QPalette::WindowText, text);
    made.setColor(QPalette::Window, window);
    return made;
}

TEST(PanelColorTest, isSeenOnThePanel) {
    const auto lightPalette = palette(Qt::black, Qt::white);
    const auto darkPalette = palette(Qt::white, Qt::black);
    EXPECT_LT(panelColor(lightPalette, "KDE").lightness(), 80);
    EXPECT_GT(panelColor(darkPalette, "KDE").lightness(), 200);
    EXPECT_GT(panelColor(lightPalette, "ubuntu:GNOME").lightness(), 200);
    EXPECT_GT(panelColor(lightPalette, "Unity").lightness(), 200);
    EXPECT_LT(panelColor(lightPalette, "").lightness(), 80);
}

} // namespace
} // namespace vantoro::testing

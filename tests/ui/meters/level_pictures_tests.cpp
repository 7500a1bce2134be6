// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/meters/level_pictures.h"

#include <algorithm>
#include <cmath>
#include <string>

#include <QtGui/QPainter>
#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

TEST(LevelPicturesTest, pictureComesInAllSizes) {
    LevelPictures pictures(Qt::white);
    const auto picture = pictures.picture(LevelSymbol::microphone, 0.3, false);
    ASSERT_EQ(picture.size(), levelGlyphSizes.size());
    for (std::size_t i = 0; i < levelGlyphSizes.size(); ++i) {
        EXPECT_EQ(picture[static_cast<int>(i)].width(), levelGlyphSizes[i]);
    }
}

TEST(LevelPicturesTest, recordingLooksDifferentAtEverySizeAndLevel) {
    LevelPictures pictures(Qt::white);
    for (const auto symbol : {LevelSymbol::loudspeaker, LevelSymbol::microphone}) {
        for (int stage = 1; stage <= levelStages; ++stage) {
            const double level = static_cast<double>(stage) / levelStages;
            const auto marked = pictures.picture(symbol, level, true);
            const auto plain = pictures.picture(symbol, level, false);
            for (qsizetype i = 0; i < plain.size(); ++i) {
                EXPECT_NE(marked[i], plain[i]);
                const int inDot = marked[i].width() / 6;
                EXPECT_EQ(marked[i].pixelColor(inDot, inDot), QColor(Qt::white));
                // The level's own part stays as it is.
                const QRect right(marked[i].width() / 2, 0, marked[i].width() / 2,
                                  marked[i].height());
                EXPECT_EQ(marked[i].copy(right), plain[i].copy(right));
            }
        }
    }
}

TEST(LevelPicturesTest, levelsOfOneStageHaveOnePicture) {
    LevelPictures pictures(Qt::white);
    const auto picture = pictures.picture(LevelSymbol::loudspeaker, 0, false);
    EXPECT_EQ(pictures.picture(LevelSymbol::loudspeaker, 0.06, false), picture);
    EXPECT_NE(pictures.picture(LevelSymbol::loudspeaker, 0.5, false), picture);
    EXPECT_NE(pictures.picture(LevelSymbol::microphone, 0, false), picture);
}

TEST(LevelPicturesTest, picturesHaveTheColorOfTheMoment) {
    LevelPictures pictures(Qt::white);
    const auto before = pictures.picture(LevelSymbol::loudspeaker, 1, false);
    pictures.setColor(Qt::black);
    const auto after = pictures.picture(LevelSymbol::loudspeaker, 1, false);
    EXPECT_EQ(before, LevelPictures(Qt::white).picture(LevelSymbol::loudspeaker, 1, false));
    EXPECT_EQ(after, LevelPictures(Qt::black).picture(LevelSymbol::loudspeaker, 1, false));
}

double luminance(const QColor& color) {
    const auto linear = [](double share) {
        return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

/// The share of the pixels whose contrast to the panel is at least 3:1, as WCAG asks of symbols.
double visibleShare(const QImage& picture, const QColor& panel) {
    QImage shown(picture.size(), QImage::Format_RGB32);
    shown.fill(panel);
    QPainter(&shown).drawImage(0, 0, picture);
    int visible = 0;
    for (int y = 0; y < shown.height(); ++y) {
        for (int x = 0; x < shown.width(); ++x) {
            const auto [darker, lighter] =
                std::minmax({luminance(shown.pixelColor(x, y)), luminance(panel)});
            visible += (lighter + 0.05) / (darker + 0.05) >= 3 ? 1 : 0;
        }
    }
    return static_cast<double>(visible) / (shown.width() * shown.height());
}

/// Calls with each picture of both symbols in both tones, and each grey of a panel.
void onEveryPanel(double level, const auto& check) {
    for (const auto symbol : {LevelSymbol::loudspeaker, LevelSymbol::microphone}) {
        for (const QColor tone : {QColor(0xf2f2f2), QColor(0x2e3436)}) {
            LevelPictures pictures(tone);
            const auto atRest = pictures.picture(symbol, 0, false);
            const auto atLevel = pictures.picture(symbol, level, false);
            for (qsizetype i = 0; i < atRest.size(); ++i) {
                for (int grey = 0; grey < 256; grey += 5) {
                    SCOPED_TRACE(std::to_string(atRest[i].width()) + " px, " +
                                 tone.name().toStdString() + " on " + std::to_string(grey));
                    check(atRest[i], atLevel[i], QColor(grey, grey, grey));
                }
            }
        }
    }
}

TEST(LevelPicturesTest, picturesAreVisibleOnEveryPanel) {
    onEveryPanel(0.5, [](const QImage& atRest, const QImage& atLevel, const QColor& panel) {
        EXPECT_GT(visibleShare(atRest, panel), 0.08);
        EXPECT_GT(visibleShare(atLevel, panel), 0.12);
    });
}

TEST(LevelPicturesTest, levelIsVisibleOnEveryPanel) {
    onEveryPanel(1, [](const QImage& atRest, const QImage& atLevel, const QColor& panel) {
        EXPECT_GT(visibleShare(atLevel, panel), visibleShare(atRest, panel) + 0.04);
    });
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

// SPDX-License-Identifier: GPL-3.0-or-later

#include <cmath>

#include <QtWidgets/QGraphicsEffect>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QSlider>

#include "tests/ui/window/main_window_fixture.h"
#include "ui/style/decorations.h"
#include "ui/style/fonts.h"

// These tests run twice: at one and at two device pixels per logical pixel.

namespace vantoro::testing {
namespace {

/// A widget's picture in device pixels, addressed in logical pixels.
class Picture {
public:
    explicit Picture(QWidget& widget)
        : image_(widget.grab().toImage().convertToFormat(QImage::Format_RGB32)),
          scale_(image_.devicePixelRatio()) {}

    /// The size of the part that differs from the background.
    QSizeF covered(const QColor& ground) const {
        QRect box;
        for (int y = 0; y < image_.height(); ++y) {
            for (int x = 0; x < image_.width(); ++x) {
                if (image_.pixel(x, y) != ground.rgb()) {
                    box |= QRect(x, y, 1, 1);
                }
            }
        }
        return QSizeF(box.size()) / scale_;
    }

    /// The length of this colour in a row.
    double lengthOf(const QColor& colour, double y) const {
        int pixels = 0;
        for (int x = 0; x < image_.width(); ++x) {
            pixels += image_.pixel(x, static_cast<int>(y * scale_)) == colour.rgb() ? 1 : 0;
        }
        return pixels / scale_;
    }

    QColor at(double x, double y) const {
        return image_.pixelColor(static_cast<int>(x * scale_), static_cast<int>(y * scale_));
    }

    const QImage& image() const { return image_; }

private:
    QImage image_;
    double scale_;
};

class GeometryTest : public MainWindowTest {
protected:
    template <class Widget>
    Widget* only() const {
        const auto all = visible<Widget>(*window);
        EXPECT_EQ(all.size(), 1U);
        return all.at(0);
    }

    QColor ground() const { return window->palette().color(QPalette::Window); }
};

TEST_F(GeometryTest, isDrawnInTheDisplaysPixels) {
    show();
    const double scale = qEnvironmentVariable("QT_SCALE_FACTOR", "1").toDouble();
    EXPECT_EQ(window->grab().devicePixelRatio(), scale);
    EXPECT_EQ(window->grab().size(), window->size() * scale);
}

TEST_F(GeometryTest, beginsAtItsUsualSizeAndDoesNotShrinkBelowTheLeast) {
    show();
    EXPECT_EQ(window->centralWidget()->size(), QSize(500, 600));
    window->resize(10, 10);
    EXPECT_EQ(window->centralWidget()->size(), QSize(480, 560));
}

TEST_F(GeometryTest, headsTheWindowWithItsIconAndName) {
    show();
    auto* const icon = only<HeaderIcon>();
    EXPECT_EQ(icon->size(), QSize(38, 38));
    const auto drawn = Picture(*icon).covered(ground());
    EXPECT_GT(drawn.width(), 30);
    EXPECT_GT(drawn.height(), 30);
    QLabel* title = nullptr;
    for (auto* const label : visible<QLabel>(*window)) {
        title = label->text() == "Vantoro" ? label : title;
    }
    ASSERT_NE(title, nullptr);
    EXPECT_EQ(title->font().weight(), QFont::DemiBold);
    // 18/13 of the base font size
    EXPECT_NEAR(title->font().pointSizeF() / window->font().pointSizeF(), 18.0 / 13, 0.01);
}

TEST_F(GeometryTest, drawsTheBadgeAsACircle) {
    show();
    auto* const badge = only<StatusBadge>();
    const Picture picture(*badge);
    EXPECT_EQ(picture.covered(ground()), QSizeF(42, 42));
    for (const auto corner : {QPointF(2, 2), QPointF(39, 2), QPointF(2, 39), QPointF(39, 39)}) {
        EXPECT_EQ(picture.at(corner.x(), corner.y()), ground());
    }
    EXPECT_NE(picture.at(7, 7), ground()); // inside the circle, and outside any smaller one
    EXPECT_EQ(picture.at(21, 21), toneColour(Tone::accent, badge->palette()).toRgb());
}

TEST_F(GeometryTest, fillsTheMeterAsFarAsTheLevelSays) {
    showIn(Case::recording);
    auto* const bar = named<LevelBar>(*window, "System");
    EXPECT_EQ(bar->size(), QSize(76, 6));
    const auto fill = toneColour(Tone::systemAudio, bar->palette());
    EXPECT_EQ(Picture(*bar).lengthOf(fill, 3), 0);
    EXPECT_EQ(Picture(*bar).covered(ground()), QSizeF(76, 6));
    reportLevel(AudioLevelSource::systemAudio, 0.5F);
    EXPECT_EQ(Picture(*bar).lengthOf(fill, 3), 38);
    const auto track = Picture(*bar).at(60, 3);
    EXPECT_EQ(Picture(*bar).lengthOf(track, 3), 38);
    reportLevel(AudioLevelSource::systemAudio, 1);
    EXPECT_EQ(Picture(*bar).lengthOf(fill, 3), 76);
    EXPECT_EQ(Picture(*bar).at(40, 0.1), fill);
    EXPECT_NE(Picture(*bar).at(0.1, 0.1), fill); // a corner
    EXPECT_EQ(Picture(*bar).at(2.6, 0.6), fill);

    const auto quiet = toneColour(Tone::secondary, bar->palette());
    const auto mixed = [&](int one, int other) { return 0.2 * one + 0.8 * other; };
    EXPECT_NEAR(track.red(), mixed(quiet.red(), ground().red()), 2);
    EXPECT_NEAR(track.blue(), mixed(quiet.blue(), ground().blue()), 2);
}

TEST_F(GeometryTest, setsTheMetersInColumns) {
    showIn(Case::recording);
    const auto rows = visible<LevelMeterRow>(*window);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(only<LevelMeterPanel>()->width(), 152);
    EXPECT_EQ(rows.at(1)->y() - rows.at(0)->geometry().bottom() - 1, 4);
    for (const auto* const row : rows) {
        const auto labels = visible<QLabel>(*row);
        ASSERT_EQ(labels.size(), 2U);
        EXPECT_EQ(labels.at(0)->width(), 42);
        EXPECT_EQ(labels.at(1)->width(), 30);
        EXPECT_EQ(labels.at(1)->palette().color(QPalette::WindowText),
                  toneColour(Tone::secondary, window->palette()));
        EXPECT_TRUE(labels.at(1)->alignment() & Qt::AlignRight);
        EXPECT_EQ(labels.at(1)->geometry().right(), row->rect().right());
    }
}

TEST_F(GeometryTest, setsTheVolumesInColumns) {
    show();
    const auto rows = visible<VolumeRow>(*window);
    ASSERT_EQ(rows.size(), 2U);
    for (const auto* const row : rows) {
        const auto labels = visible<QLabel>(*row);
        const auto* const slider = visible<QSlider>(*row).at(0);
        EXPECT_EQ(visible<SymbolLabel>(*row).at(0)->width(), 20);
        EXPECT_EQ(labels.at(0)->width(), 84);
        EXPECT_EQ(labels.at(1)->width(), 38);
        EXPECT_EQ(labels.at(1)->palette().color(QPalette::WindowText),
                  toneColour(Tone::secondary, window->palette()));
        EXPECT_TRUE(labels.at(1)->alignment() & Qt::AlignRight);
        EXPECT_GT(slider->geometry().left(), labels.at(0)->geometry().right());
        EXPECT_LT(slider->geometry().right(), labels.at(1)->geometry().left());
        EXPECT_EQ(slider->minimum(), 0);
        EXPECT_EQ(slider->maximum(), 1.25 * VolumeRow::stepsPerUnit);
    }
}

TEST_F(GeometryTest, drawsAVolumeOfASourceThatIsOffPale) {
    show();
    auto* const row = visible<VolumeRow>(*window).at(0);
    const auto opaque = [&] { return row->graphicsEffect() == nullptr; };
    EXPECT_TRUE(opaque());
    model->setCaptureSystemAudio(false);
    ASSERT_FALSE(opaque());
    auto& card = *row->parentWidget();
    const auto pale = Picture(card).image();
    row->graphicsEffect()->setEnabled(false);
    const auto full = Picture(card).image();
    const double scale = full.devicePixelRatio();
    const QRect place(row->pos() * scale, row->size() * scale);
    const auto paper = full.pixelColor(place.topLeft());
    int inked = 0;
    for (int y = place.top(); y <= place.bottom(); ++y) {
        for (int x = place.left(); x <= place.right(); ++x) {
            const int ink = full.pixelColor(x, y).green() - paper.green();
            inked += std::abs(ink) > 60 ? 1 : 0;
            ASSERT_NEAR(pale.pixelColor(x, y).green() - paper.green(), 0.45 * ink, 2);
        }
    }
    EXPECT_GT(inked, 100);
    model->setCaptureSystemAudio(true);
    EXPECT_TRUE(opaque());
}

TEST_F(GeometryTest, leavesRoomAroundTheColumn) {
    showIn(Case::completed);
    window->resize(10, 10); // no free space at the end
    settleEvents();
    const auto& column = *only<QScrollArea>()->widget();
    const auto status = placeIn(column, *only<StatusPanel>());
    EXPECT_EQ(status.topLeft(), QPoint(20, 20));
    EXPECT_EQ(column.rect().right() - status.right(), 20);
    const auto completed = placeIn(column, *only<CompletedPanel>());
    EXPECT_EQ(completed.left(), 20);
    EXPECT_EQ(column.rect().right() - completed.right(), 20);
    EXPECT_EQ(column.rect().bottom() - completed.bottom(), 20);
}

TEST_F(GeometryTest, keepsTheRecordButtonLargeAndInTheCorner) {
    for (const std::string spoken : {"en", "zh-Hans"}) {
        model.reset();
        preferences = preferencesIn(spoken);
        show();
        auto* const button = only<RecordButton>();
        button->clearFocus();
        const auto drawn = Picture(*button).covered(ground());
        EXPECT_GE(drawn.width(), 138);
        EXPECT_EQ(button->font().weight(), QFont::DemiBold);
        EXPECT_NEAR(button->font().pointSizeF() / window->font().pointSizeF(), 14.0 / 13, 0.01);
        const auto& content = *window->centralWidget();
        const auto place = placeIn(content, *button);
        EXPECT_GT(place.top(), placeIn(content, *only<QScrollArea>()).bottom());
        EXPECT_EQ(place.right() - (button->width() - drawn.width()) / 2,
                  content.rect().right() - 20);
        TearDown();
    }
}

} // namespace
} // namespace vantoro::testing

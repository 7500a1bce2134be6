// SPDX-License-Identifier: GPL-3.0-or-later

#include <QtWidgets/QStyle>
#include <QtWidgets/QStyleOptionSlider>

#include "tests/ui/window/main_window_fixture.h"

namespace vantoro::testing {
namespace {

class VolumeSliderTest : public MainWindowTest {
protected:
    VolumeSlider& slider(const QString& name) const { return *named<VolumeSlider>(*window, name); }

    /// The middle of the handle.
    static int handleOf(const QSlider& slider) {
        QStyleOptionSlider option;
        option.initFrom(&slider);
        option.minimum = slider.minimum();
        option.maximum = slider.maximum();
        option.sliderPosition = slider.value();
        option.subControls = QStyle::SC_SliderHandle;
        return slider.style()
            ->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, &slider)
            .center()
            .x();
    }
};

TEST_F(VolumeSliderTest, setsTheUsualVolumeOnADoubleClick) {
    show();
    for (const auto& [name, usual] : {std::pair{"System level", 0.9}, {"Mic level", 1.0}}) {
        auto& one = slider(name);
        one.setValue(300);
        for (const int x : {handleOf(one), one.width() - 5}) {
            QTest::mouseClick(&one, Qt::LeftButton, {}, QPoint(x, one.height() / 2));
            QTest::mouseDClick(&one, Qt::LeftButton, {}, QPoint(x, one.height() / 2));
            EXPECT_EQ(one.value(), usual * VolumeRow::stepsPerUnit) << name;
        }
    }
    EXPECT_EQ(values().systemVolume, 0.9);
    EXPECT_EQ(values().microphoneVolume, 1.0);
}

TEST_F(VolumeSliderTest, marksTheVolumeThatLeavesTheSourceUnchanged) {
    show();
    auto& one = slider("System level");
    for (const auto direction : {Qt::LeftToRight, Qt::RightToLeft}) {
        one.setLayoutDirection(direction);
        model->setSystemVolume(1);
        const int unchanged = handleOf(one);
        model->setSystemVolume(0);
        const auto picture = one.grab().toImage();
        const double scale = picture.devicePixelRatio();
        const auto ground = picture.pixelColor(0, 1);
        std::vector<double> marked;
        for (int x = 0; x < picture.width(); ++x) {
            if (contrast(picture.pixelColor(x, 1), ground) >= 3) {
                marked.push_back(x / scale);
            }
        }
        ASSERT_FALSE(marked.empty());
        EXPECT_LE(marked.size(), 2 * scale);
        EXPECT_NEAR(marked.front(), unchanged, 1.5);
    }
}

} // namespace
} // namespace vantoro::testing

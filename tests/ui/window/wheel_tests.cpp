// SPDX-License-Identifier: GPL-3.0-or-later

#include <QtGui/QWheelEvent>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QSlider>

#include "tests/ui/window/main_window_fixture.h"

namespace vantoro::testing {
namespace {

/// A window whose column is too long for it.
class WheelTest : public MainWindowTest {
protected:
    void SetUp() override {
        showIn(Case::completed);
        window->resize(10, 10);
        settleEvents();
        ASSERT_GT(bar().maximum(), 0);
        bar().setValue(0);
    }

    QScrollBar& bar() const { return *visible<QScrollArea>(*window).at(0)->verticalScrollBar(); }

    QSlider& slider() const { return *named<QSlider>(*window, "System level"); }

    QComboBox& picker() const { return *visible<QComboBox>(*window).at(0); }

    /// One notch towards the user.
    static void turnWheelOver(QWidget& widget) {
        const QPointF middle = widget.rect().center();
        QWheelEvent notch(middle, widget.mapToGlobal(middle), QPoint(), QPoint(0, -120),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QSpontaneKeyEvent::setSpontaneous(&notch); // only those travel to parents
        qApp->notify(&widget, &notch);
    }
};

TEST_F(WheelTest, scrollsTheColumnOverASlider) {
    const double before = values().systemVolume;
    turnWheelOver(slider());
    EXPECT_EQ(values().systemVolume, before);
    EXPECT_GT(bar().value(), 0);
    EXPECT_FALSE(slider().hasFocus());
}

TEST_F(WheelTest, scrollsTheColumnOverThePicker) {
    const auto before = values().selectedMicrophoneID;
    turnWheelOver(picker());
    EXPECT_EQ(values().selectedMicrophoneID, before);
    EXPECT_GT(bar().value(), 0);
    EXPECT_FALSE(picker().hasFocus());
}

TEST_F(WheelTest, movesTheSliderThatHasTheFocus) {
    slider().setFocus();
    const double before = values().systemVolume;
    turnWheelOver(slider());
    EXPECT_LT(values().systemVolume, before);
    EXPECT_EQ(bar().value(), 0);
}

TEST_F(WheelTest, picksTheNextMicrophoneInThePickerThatHasTheFocus) {
    picker().setFocus();
    turnWheelOver(picker());
    EXPECT_EQ(values().selectedMicrophoneID, "headset");
    EXPECT_EQ(bar().value(), 0);
}

} // namespace
} // namespace vantoro::testing

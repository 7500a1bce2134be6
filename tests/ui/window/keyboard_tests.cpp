// SPDX-License-Identifier: GPL-3.0-or-later

#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QSlider>

#include "tests/ui/window/main_window_fixture.h"

namespace vantoro::testing {
namespace {

using Names = std::vector<std::string>;

class KeyboardTest : public MainWindowTest {
protected:
    /// Focuses the control that comes first in tab order.
    void begin() {
        show();
        auto* const first = named<SymbolButton>(*window, "Refresh audio devices and permissions");
        ASSERT_NE(first, nullptr);
        first->setFocus(Qt::TabFocusReason);
    }

    static std::string nameOf(const QWidget& control) {
        const auto* const button = qobject_cast<const QPushButton*>(&control);
        const auto name = control.accessibleName();
        return (name.isEmpty() && button != nullptr ? button->text() : name).toStdString();
    }

    /// All controls in tab order, one full cycle.
    std::vector<QWidget*> controls(Qt::Key key = Qt::Key_Tab) const {
        std::vector<QWidget*> found{window->focusWidget()};
        for (;;) {
            QTest::keyClick(window->focusWidget(), key);
            if (std::ranges::find(found, window->focusWidget()) != found.end()) {
                return found;
            }
            found.push_back(window->focusWidget());
        }
    }

    static Names namesOf(const std::vector<QWidget*>& controls) {
        Names names;
        for (const auto* const control : controls) {
            names.push_back(nameOf(*control));
        }
        return names;
    }

    /// Moves the focus there by Tab.
    QWidget* reach(const std::string& name) const {
        for (auto* const control : controls()) {
            if (nameOf(*control) == name) {
                control->setFocus(Qt::TabFocusReason);
                return control;
            }
        }
        ADD_FAILURE() << "out of reach: " << name;
        return window.get();
    }

    void press(const std::string& name, Qt::Key key) const { QTest::keyClick(reach(name), key); }
};

TEST_F(KeyboardTest, reachesEverythingFromTopToBottom) {
    devices.mayCapture = false;
    microphone.current = AuthorizationStatus::denied;
    lead(Case::idle);
    begin();
    const Names idle{"Refresh audio devices and permissions",
                     "System Audio",
                     "Microphone",
                     "Input",
                     "Settings: Screen & System Audio",
                     "Settings: Microphone",
                     "System level",
                     "Mic level",
                     "Change",
                     "Open recording folder",
                     "Start Recording"};
    EXPECT_EQ(namesOf(controls()), idle);
    auto backwards = namesOf(controls(Qt::Key_Backtab));
    std::reverse(backwards.begin() + 1, backwards.end());
    EXPECT_EQ(backwards, idle);
}

TEST_F(KeyboardTest, reachesTheRecordingThatWasSavedBeforeTheRecordButton) {
    lead(Case::completed);
    begin();
    const auto names = namesOf(controls());
    EXPECT_EQ(Names(names.end() - 3, names.end()),
              (Names{"Play recording", "Show in Finder", "Start Recording"}));
}

TEST_F(KeyboardTest, leavesOutWhatCannotBeUsed) {
    lead(Case::recording);
    begin();
    model->setCaptureSystemAudio(false);
    const auto names = namesOf(controls());
    EXPECT_EQ(std::ranges::count(names, "Input"), 0);
    EXPECT_EQ(std::ranges::count(names, "System level"), 0);
    EXPECT_EQ(std::ranges::count(names, "Mic level"), 1);
    EXPECT_EQ(names.back(), "Stop Recording");
}

TEST_F(KeyboardTest, bringsIntoViewWhatIsReached) {
    lead(Case::completed);
    begin();
    window->resize(10, 10);
    const auto* const column = visible<QScrollArea>(*window).at(0);
    for (const auto& name : {"Show in Finder", "System Audio"}) {
        const auto* const control = reach(name);
        QTest::keyClick(window->focusWidget(), Qt::Key_Backtab);
        QTest::keyClick(window->focusWidget(), Qt::Key_Tab);
        const QRect place(control->mapTo(column->viewport(), QPoint(0, 0)), control->size());
        EXPECT_TRUE(column->viewport()->rect().contains(place)) << name;
    }
}

TEST_F(KeyboardTest, pressesButtonsBySpaceAndByEnter) {
    devices.mayCapture = false;
    microphone.current = AuthorizationStatus::denied;
    recorder.startError = nullptr;
    lead(Case::completed);
    begin();
    for (const auto key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        opener.calls.clear();
        press("Settings: Screen & System Audio", key);
        press("Settings: Microphone", key);
        press("Open recording folder", key);
        press("Play recording", key);
        press("Show in Finder", key);
        EXPECT_EQ(opener.calls,
                  (Names{"settings Privacy_ScreenCapture", "settings Privacy_Microphone",
                         "open folder " + values().outputDirectory.string(),
                         "open /music/recorded.m4a", "reveal /music/recorded.m4a"}));
        folderDialog.questions.clear();
        press("Change", key);
        EXPECT_EQ(folderDialog.questions.size(), 1U);
        const auto looked = devices.readings;
        press("Refresh audio devices and permissions", key);
        scheduler.settle();
        EXPECT_EQ(devices.readings, looked + 1);
    }
}

TEST_F(KeyboardTest, startsAndStopsBySpaceAndByEnter) {
    begin();
    for (const auto key : {Qt::Key_Space, Qt::Key_Return}) {
        press("Start Recording", key);
        scheduler.settle();
        EXPECT_EQ(state(), Case::recording);
        press("Stop Recording", key);
        scheduler.settle();
        EXPECT_EQ(state(), Case::completed);
    }
}

TEST_F(KeyboardTest, turnsSourcesOnAndOffBySpaceAndByEnter) {
    begin();
    for (const auto key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        press("System Audio", key);
        EXPECT_FALSE(values().captureSystemAudio);
        press("System Audio", key);
        EXPECT_TRUE(values().captureSystemAudio);
    }
}

TEST_F(KeyboardTest, movesVolumesByTheArrows) {
    begin();
    model->setSystemVolume(0.5);
    press("System level", Qt::Key_Right);
    EXPECT_NEAR(values().systemVolume, 0.51, 1e-9);
    press("System level", Qt::Key_Left);
    press("System level", Qt::Key_Left);
    EXPECT_NEAR(values().systemVolume, 0.49, 1e-9);
    press("System level", Qt::Key_PageUp);
    EXPECT_NEAR(values().systemVolume, 0.59, 1e-9);
    press("System level", Qt::Key_End);
    EXPECT_EQ(values().systemVolume, 1.25);
    press("System level", Qt::Key_Home);
    EXPECT_EQ(values().systemVolume, 0);
}

TEST_F(KeyboardTest, picksAMicrophoneByTheArrows) {
    begin();
    EXPECT_EQ(values().selectedMicrophoneID, "built-in");
    press("Input", Qt::Key_Down);
    EXPECT_EQ(values().selectedMicrophoneID, "headset");
    press("Input", Qt::Key_Up);
    EXPECT_EQ(values().selectedMicrophoneID, "built-in");
}

TEST_F(KeyboardTest, showsWhereItIs) {
    devices.mayCapture = false;
    microphone.current = AuthorizationStatus::denied;
    for (const bool dark : {false, true}) {
        QApplication::setPalette(dark ? QPalette(QColor(0x3a3a3c), QColor(0x242426)) : QPalette());
        model.reset();
        lead(Case::completed);
        begin();
        for (auto* const control : controls()) {
            control->setFocus(Qt::TabFocusReason);
            const auto with = control->grab().toImage();
            control->clearFocus();
            const auto without = control->grab().toImage();
            int changed = 0;
            for (int pixel = 0; pixel < with.width() * with.height(); ++pixel) {
                const QPoint at(pixel % with.width(), pixel / with.width());
                changed += contrast(with.pixelColor(at), without.pixelColor(at)) > 1.3 ? 1 : 0;
            }
            EXPECT_GT(changed, 20) << nameOf(*control) << (dark ? ", dark" : "");
        }
        TearDown();
    }
    QApplication::setPalette(QPalette());
}

} // namespace
} // namespace vantoro::testing

// SPDX-License-Identifier: GPL-3.0-or-later

#include <QtTest/QSignalSpy>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QSlider>

#include "tests/ui/window/main_window_fixture.h"
#include "ui/style/keys.h"

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

TEST_F(KeyboardTest, beginsAtTheRecordButton) {
    show();
    EXPECT_EQ(nameOf(*window->focusWidget()), "Start Recording");
}

TEST_F(KeyboardTest, staysAtTheRecordButtonWhileItIsDisabled) {
    show();
    QTest::keyClick(window->focusWidget(), Qt::Key_Space);
    ASSERT_EQ(state(), Case::preparing);
    EXPECT_EQ(window->focusWidget(), nullptr);
    scheduler.settle();
    ASSERT_EQ(state(), Case::recording);
    ASSERT_NE(window->focusWidget(), nullptr);
    EXPECT_EQ(nameOf(*window->focusWidget()), "Stop Recording");
}

TEST_F(KeyboardTest, goesWhereTheUserMovesItWhileTheRecordButtonIsDisabled) {
    show();
    QTest::keyClick(window->focusWidget(), Qt::Key_Space);
    QTest::keyClick(window.get(), Qt::Key_Tab);
    ASSERT_NE(window->focusWidget(), nullptr);
    const auto chosen = nameOf(*window->focusWidget());
    EXPECT_NE(chosen, "Start Recording");
    scheduler.settle();
    EXPECT_EQ(nameOf(*window->focusWidget()), chosen);
}

TEST_F(KeyboardTest, closesTheWindowByControlW) {
    show();
    QSignalSpy closing(window.get(), &MainWindow::closeRequested);
    QTest::keyClick(window.get(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_EQ(closing.count(), 1);
}

TEST_F(KeyboardTest, opensTheMenuAndPicksFromItInBothLanguages) {
    for (const std::string spoken : {"en", "zh-Hans"}) {
        preferences = preferencesIn(spoken);
        show();
        auto* const menu = window->menuBar()->actions().at(0)->menu();
        const auto picks = [&](Qt::Key key, auto signal) {
            QTest::keyClick(window.get(), Qt::Key_F10);
            ASSERT_TRUE(QTest::qWaitFor([&] { return menu->isVisible(); }));
            QSignalSpy picked(window.get(), signal);
            QTest::keyClick(menu, key);
            EXPECT_EQ(picked.count(), 1) << spoken;
            EXPECT_FALSE(menu->isVisible());
        };
        picks(Qt::Key_C, &MainWindow::closeRequested);
        picks(Qt::Key_Q, &MainWindow::quitRequested);
        TearDown();
    }
}

TEST_F(KeyboardTest, namesItsShortcutsInToolTipsAndInTheMenu) {
    show();
    EXPECT_EQ(named<SymbolButton>(*window, "Refresh audio devices and permissions")->toolTip(),
              "Refresh audio devices and permissions (F5)");
    const auto* const button = visible<RecordButton>(*window).at(0);
    EXPECT_EQ(button->toolTip(), "Start Recording (Ctrl+R)");
    model->startRecording();
    scheduler.settle();
    EXPECT_EQ(button->toolTip(), "Stop Recording (Ctrl+R)");
    std::vector<std::string> shown;
    for (const auto* const action : window->menuBar()->actions().at(0)->menu()->actions()) {
        if (!action->shortcut().isEmpty()) {
            shown.push_back(action->shortcut().toString().toStdString());
        }
    }
    EXPECT_EQ(shown, (Names{"Ctrl+W", "Ctrl+Q"}));
}

TEST(AccessKeyTest, isALetterOfTheTextOrFollowsIt) {
    EXPECT_EQ(withAccessKey("Quit", 'Q'), "&Quit");
    EXPECT_EQ(withAccessKey("Check for Updates", 'U'), "Check for &Updates");
    EXPECT_EQ(withAccessKey("退出", 'Q'), "退出(&Q)");
}

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
            ASSERT_EQ(window->focusWidget(), control);
            const auto with = control->grab().toImage();
            QTest::keyClick(control, Qt::Key_Tab); // only keys make the toolkit show the focus
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

// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/window/vantoro_app.h"

#include <filesystem>
#include <optional>
#include <vector>

#include <QtCore/QTimer>
#include <QtWidgets/QApplication>

#include "tests/app/window/fake_notifications.h"
#include "tests/control/event_loop.h"
#include "tests/control/view_model_fixture.h"
#include "tests/support/fake_status_area.h"
#include "ui/rows/toggle_switch.h"

namespace vantoro::testing {
namespace {

using namespace std::chrono_literals;

constexpr auto patience = 20s; // far longer than needed

/// Records what it shows.
struct FakeTaskBarEntry final : TaskBarEntry {
    std::vector<std::optional<double>> shown;

    void setProgress(std::optional<double> fraction) override { shown.push_back(fraction); }
};

/// The whole program, on a desktop where only the test causes events.
class VantoroAppTest : public ViewModelTest {
protected:
    FakeStatusArea area;
    FakeNotifications notifications;
    FakeTaskBarEntry taskBarEntry;
    int launches = 0;
    int ends = 0;
    int quits = 0;            ///< not called off
    std::vector<Case> states; ///< of recording, as reported
    std::filesystem::path recordingFolder;
    std::optional<VantoroApp> app;

    VantoroAppTest() { area.available = true; }

    void start() {
        app.emplace(std::make_unique<FakeRecorder>(recorder), platform(),
                    WindowPlatform{.statusArea = area,
                                   .notifications = notifications,
                                   .taskBarEntry = taskBarEntry,
                                   .desktops = "KDE",
                                   .version = "1.2.3",
                                   .askForRecord = {},
                                   .launched = [this] { ++launches; },
                                   .progressed =
                                       [this](Case state, const auto& folder) {
                                           states.push_back(state);
                                           recordingFolder = folder;
                                       },
                                   .quits = [this] { ++quits; },
                                   .stays = [this] { --quits; },
                                   .end = [this] { ++ends; }});
        scheduler.settle();
    }

    void TearDown() override { app.reset(); }

    static MainWindow& window() {
        for (auto* const widget : QApplication::topLevelWidgets()) {
            if (auto* const found = qobject_cast<MainWindow*>(widget)) {
                return *found;
            }
        }
        throw std::runtime_error("there is no window");
    }

    void startRecording() {
        window().findChild<RecordButton*>()->click();
        scheduler.settle();
        ASSERT_EQ(recorder.calls.back(), "start");
    }

    bool eventuallyEnds() {
        return EventLoop::runUntil([this] {
            scheduler.settle();
            return ends > 0;
        });
    }

    bool stands() {
        return EventLoop::runUntil([this] { return launches > 0; });
    }

    /// Runs all pending work.
    void settle() {
        for (int round = 0; round < 3; ++round) {
            scheduler.settle();
            QCoreApplication::processEvents();
        }
    }
};

TEST_F(VantoroAppTest, windowIsShownAtOnceAndTheMetersAfterIt) {
    start();
    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(area.items.size(), 0U);
    EXPECT_EQ(launches, 0);
    ASSERT_TRUE(stands());
    EXPECT_EQ(area.items.size(), 2U);
    window().update();
    settle();
    EXPECT_EQ(launches, 1);
}

TEST_F(VantoroAppTest, launchEndsAlsoWhereTheWindowIsNotShown) {
    start();
    window().hide();
    ASSERT_TRUE(stands());
    EXPECT_EQ(area.items.size(), 2U);
}

TEST_F(VantoroAppTest, closedWindowIsHiddenIfAMeterCanBringItBack) {
    start();
    ASSERT_TRUE(stands());
    window().close();
    EXPECT_FALSE(window().isVisible());
    EXPECT_EQ(ends, 0);
    area.items.at(0)->traits.clicked("");
    EXPECT_TRUE(window().isVisible());
    EXPECT_FALSE(window().isMinimized());
}

TEST_F(VantoroAppTest, closedWindowIsMinimisedWithoutAStatusArea) {
    for (const std::optional<bool> available : {std::optional(false), std::optional<bool>()}) {
        area.available = available;
        start();
        window().close();
        EXPECT_TRUE(window().isVisible());
        EXPECT_TRUE(window().isMinimized());
        app->activate("");
        EXPECT_FALSE(window().isMinimized());
        app.reset();
    }
}

TEST_F(VantoroAppTest, hiddenWindowIsMinimisedWhenTheStatusAreaDisappears) {
    start();
    window().close();
    area.setAvailable(false);
    EXPECT_TRUE(window().isVisible());
    EXPECT_TRUE(window().isMinimized());
}

TEST_F(VantoroAppTest, visibleWindowStaysWhenTheStatusAreaDisappears) {
    start();
    area.setAvailable(false);
    EXPECT_FALSE(window().isMinimized());
}

TEST_F(VantoroAppTest, recordingGoesOnWhileTheWindowIsClosed) {
    start();
    startRecording();
    window().close();
    settle();
    EXPECT_EQ(recorder.calls.back(), "start");
    app->activate("");
    EXPECT_EQ(window().findChild<RecordButton*>()->text(), "Stop Recording");
}

TEST_F(VantoroAppTest, desktopMakesARecordingWithoutTheWindow) {
    start();
    window().close();
    app->startRecording("");
    settle();
    EXPECT_EQ(recorder.calls.back(), "start");
    app->stopRecording("");
    settle();
    EXPECT_EQ(recorder.calls.back(), "stop");
    EXPECT_FALSE(window().isVisible());
}

TEST_F(VantoroAppTest, menuOfAMeterShowsTheWindowAndMakesARecordingAndQuits) {
    start();
    ASSERT_TRUE(stands());
    window().close();
    const auto choose = [this](StatusAreaCommand command) {
        area.items.at(0)->traits.chosen(command, "");
        settle();
    };
    choose(StatusAreaCommand::startRecording);
    EXPECT_EQ(recorder.calls.back(), "start");
    choose(StatusAreaCommand::stopRecording);
    EXPECT_EQ(recorder.calls.back(), "stop");
    EXPECT_FALSE(window().isVisible());
    choose(StatusAreaCommand::showWindow);
    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(ends, 0);
    choose(StatusAreaCommand::quit);
    EXPECT_EQ(ends, 1);
}

TEST_F(VantoroAppTest, metersFollowTheRecordingAndTheLanguage) {
    start();
    ASSERT_TRUE(stands());
    const auto& meter = *area.items.at(1);
    EXPECT_EQ(meter.menu.at(1).label, "Start Recording");
    EXPECT_EQ(meter.toolTipDetail, "");
    startRecording();
    scheduler.advance(2s);
    EXPECT_EQ(meter.menu.at(1).label, "Stop Recording");
    EXPECT_EQ(meter.toolTipDetail, "Recording: 00:02");
    app->stopRecording("");
    settle();
    EXPECT_EQ(meter.menu.at(1).label, "Start Recording");
    EXPECT_EQ(meter.toolTipDetail, "");
    for (auto* const action : window().findChildren<QAction*>()) {
        if (action->text() == "中文") {
            action->trigger();
        }
    }
    EXPECT_EQ(meter.menu.at(1).label, "开始录音");
}

TEST_F(VantoroAppTest, recordingCannotBeStartedFromAMenuWithoutSources) {
    start();
    ASSERT_TRUE(stands());
    for (auto* const toggle : window().findChildren<ToggleSwitch*>()) {
        EXPECT_TRUE(area.items.at(0)->menu.at(1).isEnabled);
        toggle->click();
    }
    EXPECT_FALSE(area.items.at(0)->menu.at(1).isEnabled);
}

TEST_F(VantoroAppTest, nothingIsNotifiedWhileTheWindowIsInFront) {
    start();
    ASSERT_TRUE(stands());
    ASSERT_TRUE(EventLoop::runUntil([] { return QApplication::activeWindow() != nullptr; }));
    startRecording();
    app->stopRecording("");
    settle();
    EXPECT_EQ(recorder.calls.back(), "stop");
    EXPECT_EQ(notifications.shows, 0);
}

TEST_F(VantoroAppTest, notificationOfAHiddenWindowIsTakenBackWhenTheWindowIsInFront) {
    start();
    ASSERT_TRUE(stands());
    startRecording();
    window().close();
    app->stopRecording("");
    settle();
    ASSERT_EQ(notifications.shown.size(), 1U);
    notifications.chosen(notifications.shown.begin()->first, "", "");
    EXPECT_TRUE(window().isVisible());
    EXPECT_TRUE(EventLoop::runUntil([this] { return notifications.shown.empty(); }));
    EXPECT_EQ(notifications.shows, 1);
}

TEST_F(VantoroAppTest, longSavingIsShownInTheTaskBar) {
    start();
    startRecording();
    recorder.duringStop = [this] {
        recorder.recorder->onExportProgress(0);
        scheduler.runMain();
        scheduler.advance(1s);
        recorder.recorder->onExportProgress(0.25);
        scheduler.runMain();
    };
    EXPECT_TRUE(taskBarEntry.shown.empty());
    app->stopRecording("");
    settle();
    EXPECT_EQ(taskBarEntry.shown, (std::vector<std::optional<double>>{0.0, 0.25, std::nullopt}));
}

TEST_F(VantoroAppTest, windowComesBackWhenARecordingThatTheDesktopWantsFails) {
    start();
    window().close();
    recorder.startError = failure("no sound server");
    app->startRecording("");
    settle();
    EXPECT_TRUE(window().isVisible());
}

TEST_F(VantoroAppTest, quittingEndsTheProgramAtOnceWhereNothingIsToBeSaved) {
    start();
    Q_EMIT window().quitRequested();
    EXPECT_EQ(ends, 1);
}

TEST_F(VantoroAppTest, quittingWhileRecordingSavesFirstAndShowsIt) {
    start();
    startRecording();
    window().close();
    Q_EMIT window().quitRequested();
    EXPECT_EQ(ends, 0);
    EXPECT_TRUE(window().isVisible());
    EXPECT_TRUE(eventuallyEnds());
    EXPECT_EQ(recorder.calls.back(), "stop");
    EXPECT_EQ(ends, 1);
}

TEST_F(VantoroAppTest, quittingIsCancelledIfSavingFails) {
    start();
    startRecording();
    recorder.stopError = failure("disk full");
    app->quit(VantoroApp::IfNotSaved::stay);
    EXPECT_EQ(quits, 1);
    settle();
    EXPECT_EQ(ends, 0);
    EXPECT_EQ(quits, 0);
    EXPECT_TRUE(window().isVisible());
    app->quit(VantoroApp::IfNotSaved::stay);
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(quits, 1);
}

TEST_F(VantoroAppTest, progressIsReported) {
    start();
    EXPECT_EQ(states, std::vector<Case>{Case::idle});
    EXPECT_EQ(recordingFolder, "/home/somebody/Movies/Vantoro");
    startRecording();
    settle();
    EXPECT_EQ(states, (std::vector<Case>{Case::idle, Case::preparing, Case::recording}));
    app->quit(VantoroApp::IfNotSaved::stay);
    settle();
    EXPECT_EQ(states, (std::vector<Case>{Case::idle, Case::preparing, Case::recording,
                                         Case::processing, Case::completed}));
}

TEST_F(VantoroAppTest, aSignalEndsTheProgramEvenIfThatCouldNotBeSaved) {
    start();
    startRecording();
    recorder.stopError = failure("disk full");
    app->quit(VantoroApp::IfNotSaved::end);
    EXPECT_TRUE(eventuallyEnds());
}

TEST_F(VantoroAppTest, sessionWaitsForTheRecordingAndTheProgramGoesOn) {
    start();
    startRecording();
    QTimer::singleShot(0, &window(), [this] { scheduler.settle(); });
    app->saveBeforeSessionEnd(patience);
    EXPECT_EQ(recorder.calls.back(), "stop");
    EXPECT_EQ(ends, 0);
}

TEST_F(VantoroAppTest, sessionWithNothingToSaveWaitsForNothing) {
    start();
    app->saveBeforeSessionEnd(patience);
    EXPECT_EQ(ends, 0);
}

TEST_F(VantoroAppTest, sessionDoesNotWaitForeverForASaveThatHangs) {
    start();
    startRecording();
    app->saveBeforeSessionEnd(1ms);
    EXPECT_EQ(recorder.calls.back(), "start"); // the fake saves when the test lets it
    settle();                                  // a session that allows the time
    EXPECT_EQ(recorder.calls.back(), "stop");
    EXPECT_EQ(ends, 0);
}

} // namespace
} // namespace vantoro::testing

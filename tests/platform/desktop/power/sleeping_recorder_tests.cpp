// SPDX-License-Identifier: GPL-3.0-or-later

// The view model on the program's threads, with an independent mock of logind.

#include <semaphore>

#include <gtest/gtest.h>

#include "control/recording_view_model.h"
#include "control/tasks/qt_scheduler.h"
#include "tests/control/event_loop.h"
#include "tests/platform/desktop/power/mock_logind.h"
#include "tests/platform/desktop/power/power_fixture.h"
#include "tests/support/fake_desktop.h"
#include "tests/support/fake_permissions.h"
#include "tests/support/fake_recorder.h"
#include "tests/support/memory_preferences.h"

namespace vantoro::testing {
namespace {

using Case = RecordingState::Case;

class SleepingRecorderTest : public PowerManagementTest {
protected:
    const QStringList held{"idle, Vantoro, Recording, block", "shutdown, Vantoro, Recording, delay",
                           "sleep, Vantoro, Recording, delay"};
    MockLogind logind{systemBus};
    MemoryPreferences preferences = preferencesIn("en");
    FakeAudioDevices devices;
    CallLog log;
    FakeMicrophoneAccess microphone{log};
    FakeOpener opener;
    FakeFolderDialog folderDialog;
    AudioLevelStore levels;
    RecorderScript recorder;
    std::binary_semaphore mayGoOn{0};
    std::unique_ptr<QtScheduler> scheduler = std::make_unique<QtScheduler>();
    std::unique_ptr<RecordingViewModel> model;

    SleepingRecorderTest() {
        start();
        model = std::make_unique<RecordingViewModel>(
            std::make_unique<FakeRecorder>(recorder),
            ControlPlatform{*scheduler, *power, devices, microphone, opener, folderDialog,
                            preferences, levels, "/recordings"});
        waitForTheFirstSalvage();
    }

    void TearDown() override {
        model.reset();
        scheduler.reset(); // its remaining work uses the members below
    }

    /// It uses the fake recorder too, on another thread.
    void waitForTheFirstSalvage() {
        bool ended = false;
        const auto whenEnded = QObject::connect(model.get(), &RecordingViewModel::salvageEnded,
                                                [&ended] { ended = true; });
        EXPECT_TRUE(EventLoop::runUntil([&ended] { return ended; }));
        QObject::disconnect(whenEnded);
    }

    bool reaches(Case state) {
        return EventLoop::runUntil([&] { return model->values().state.which() == state; });
    }

    void record() {
        model->startRecording();
        ASSERT_TRUE(reaches(Case::recording));
        ASSERT_TRUE(logind.eventuallyHas(held));
    }

    /// Whether the state is unchanged once a question sent after the signal is answered.
    bool staysIn(Case state) {
        const auto inForce = logind.inhibitors();
        return model->values().state.which() == state && inForce == logind.inhibitors();
    }
};

TEST_F(SleepingRecorderTest, idleHoldsNothingOffAndRefreshesAfterSleep) {
    ASSERT_TRUE(EventLoop::runUntil([&] { return !model->values().microphones.empty(); }));
    {
        // The lock request follows the subscription to the sleep signal.
        const auto hold = power->holdOffSleep("Recording");
        ASSERT_TRUE(logind.eventuallyHas(held));
    }
    devices.list = {{"new", "New"}};
    logind.prepareForSleep(true);
    EXPECT_TRUE(logind.eventuallyHas({}));
    logind.prepareForSleep(false);
    EXPECT_TRUE(EventLoop::runUntil([&] { return model->values().microphones == devices.list; }));
    EXPECT_TRUE(staysIn(Case::idle));
}

TEST_F(SleepingRecorderTest, startingDelaysSleepUntilTheRecordingIsSaved) {
    recorder.duringStart = [this] { mayGoOn.acquire(); };
    model->startRecording();
    ASSERT_TRUE(logind.eventuallyHas(held));
    logind.prepareForSleep(true);
    EXPECT_TRUE(staysIn(Case::preparing));
    EXPECT_EQ(logind.inhibitors(), held);
    mayGoOn.release();
    ASSERT_TRUE(reaches(Case::completed));
    EXPECT_EQ(model->values().errorMessage,
              "Recording was interrupted by sleep. The captured audio was saved successfully.");
    EXPECT_TRUE(logind.eventuallyHas({}));
}

TEST_F(SleepingRecorderTest, recordingDelaysSleepUntilTheSoundIsSafeAndMixesLater) {
    record();
    recorder.duringStop = [this] {
        mayGoOn.acquire();
        recorder.recorder->onRecordingSafe();
        mayGoOn.acquire(); // the machine sleeps
    };
    logind.prepareForSleep(true);
    ASSERT_TRUE(reaches(Case::processing));
    EXPECT_EQ(logind.inhibitors(), held);
    mayGoOn.release();
    EXPECT_TRUE(logind.eventuallyHas({}));
    EXPECT_TRUE(staysIn(Case::processing));
    logind.prepareForSleep(false);
    mayGoOn.release();
    ASSERT_TRUE(reaches(Case::completed));
    EXPECT_EQ(model->values().errorMessage,
              "Recording was interrupted by sleep. The captured audio was saved successfully.");
}

TEST_F(SleepingRecorderTest, savingDelaysSleepAndKeepsItsReason) {
    record();
    recorder.duringStop = [this] { mayGoOn.acquire(); };
    model->toggleRecording();
    ASSERT_TRUE(reaches(Case::processing));
    logind.prepareForSleep(true);
    EXPECT_EQ(logind.inhibitors(), held);
    mayGoOn.release();
    ASSERT_TRUE(reaches(Case::completed));
    EXPECT_EQ(model->values().errorMessage, std::nullopt);
    EXPECT_TRUE(logind.eventuallyHas({}));
}

} // namespace
} // namespace vantoro::testing

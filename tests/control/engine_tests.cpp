// SPDX-License-Identifier: GPL-3.0-or-later

// The view model with the real recorder, on the program's threads.

#include <gtest/gtest.h>

#include "control/recording_view_model.h"
#include "control/tasks/qt_scheduler.h"
#include "engine/recorder/audio_recorder.h"
#include "tests/control/event_loop.h"
#include "tests/support/call_log.h"
#include "tests/support/fake_capture_service.h"
#include "tests/support/fake_clock.h"
#include "tests/support/fake_desktop.h"
#include "tests/support/fake_media_toolkit.h"
#include "tests/support/fake_permissions.h"
#include "tests/support/fake_power.h"
#include "tests/support/memory_file_system.h"
#include "tests/support/memory_preferences.h"

namespace vantoro::testing {
namespace {

using Case = RecordingState::Case;

class EngineTest : public ::testing::Test {
protected:
    EventLoop loop;
    CallLog log;
    FakeCaptureAccess captureAccess{log};
    FakeMicrophoneAccess microphone{log};
    FakeCaptureService capture{log};
    MemoryFileSystem fileSystem{log};
    FakeMediaToolkit toolkit{log, fileSystem};
    FakeClock clock;
    MemoryPreferences preferences = preferencesIn("en");
    FakePower power;
    FakeOpener opener;
    FakeFolderDialog folderDialog;
    FakeAudioDevices devices;
    AudioLevelStore levels;
    QtScheduler scheduler;
    std::unique_ptr<RecordingViewModel> model;

    void launch(std::function<void()> recorderProgressed = {}) {
        model = std::make_unique<RecordingViewModel>(
            std::make_unique<AudioRecorder>(
                RecorderPlatform{captureAccess, microphone, capture, toolkit, fileSystem, clock}),
            ControlPlatform{scheduler, power, devices, microphone, opener, folderDialog,
                            preferences, levels, "/recordings", std::move(recorderProgressed)});
    }

    void startRecording() {
        launch();
        model->startRecording();
    }

    bool reaches(Case state) {
        return EventLoop::runUntil([&] { return model->values().state.which() == state; });
    }
};

TEST_F(EngineTest, recordsAndShowsLevels) {
    startRecording();
    ASSERT_TRUE(reaches(Case::recording));
    capture.deliver(bufferAt(0, 2, 256, 1.0F), AudioLevelSource::systemAudio);
    EXPECT_TRUE(EventLoop::runUntil([&] { return model->values().systemAudioLevel > 0; }));
    EXPECT_EQ(levels.systemAudioLevel(), 1);
    model->toggleRecording();
    ASSERT_TRUE(reaches(Case::completed));
    EXPECT_EQ(model->values().lastRecordingURL, "/recordings/Vantoro-2025-03-01-093015.m4a");
    EXPECT_EQ(toolkit.exportedGains, (std::vector<float>{0.9F, 1.0F}));
}

TEST_F(EngineTest, showsNoMoreThanFifteenLevelsASecondOfEachSource) {
    startRecording();
    ASSERT_TRUE(reaches(Case::recording));
    std::map<RecordingProperties::Property, int> writings;
    QObject::connect(model.get(), &RecordingProperties::propertyChanged, model.get(),
                     [&](auto property) { ++writings[property]; });
    constexpr int buffers = 188; // of 256 frames: one second, enough to show the last level
    for (std::int64_t i = 0; i < buffers; ++i) {
        clock.uptime += 256.0 / 48000;
        capture.deliver(bufferAt(i * 256, 2, 256, 0.1F), AudioLevelSource::systemAudio);
        capture.deliver(bufferAt(i * 256, 1, 256, 0.1F), AudioLevelSource::microphone);
    }
    model->toggleRecording(); // after all levels that were reported
    ASSERT_TRUE(reaches(Case::completed));
    constexpr int resets = 1; // when the stop was requested
    for (const auto level : {RecordingProperties::Property::systemAudioLevel,
                             RecordingProperties::Property::microphoneLevel}) {
        EXPECT_LE(writings[level], 15 + resets);
    }
}

TEST_F(EngineTest, savesWhenCaptureStopsByItself) {
    startRecording();
    ASSERT_TRUE(reaches(Case::recording));
    capture.deliver(bufferAt(0), AudioLevelSource::systemAudio);
    capture.stopByItself(std::make_exception_ptr(std::runtime_error("connection lost")));
    ASSERT_TRUE(reaches(Case::completed));
    EXPECT_EQ(model->values().errorMessage,
              "Audio capture was interrupted. The captured audio was saved successfully. "
              "connection lost");
}

TEST_F(EngineTest, tellsOfAMutedMicrophone) {
    startRecording();
    ASSERT_TRUE(reaches(Case::recording));
    capture.muteMicrophone(true);
    EXPECT_TRUE(EventLoop::runUntil(
        [&] { return model->values().microphoneCondition == SourceCondition::muted; }));
}

TEST_F(EngineTest, letsTheMachineSleepOnceTheRecordingIsSafe) {
    startRecording();
    ASSERT_TRUE(reaches(Case::recording));
    capture.deliver(bufferAt(0), AudioLevelSource::systemAudio);
    EXPECT_TRUE(power.isHeldOff());
    model->toggleRecording();
    ASSERT_TRUE(reaches(Case::completed));
    EXPECT_FALSE(power.isHeldOff());
}

TEST_F(EngineTest, announcesTheVolumesOfTheMix) {
    startRecording();
    ASSERT_TRUE(reaches(Case::recording));
    model->setSystemVolume(0.25);
    EXPECT_TRUE(EventLoop::runUntil([&] { return log.contains("expectMix 0.25 1.00"); }))
        << ::testing::PrintToString(log.startingWith("expectMix"));
}

TEST_F(EngineTest, failsAsTheEngineDoes) {
    captureAccess.isAllowed = false;
    devices.mayCapture = false;
    startRecording();
    ASSERT_TRUE(reaches(Case::failed));
    EXPECT_FALSE(model->values().hasScreenPermission);
    EXPECT_TRUE(log.startingWith("makeWriter").empty());
}

TEST_F(EngineTest, reportsProgressOfAStopAtOnce) {
    std::atomic<int> steps = 0;
    launch([&] { ++steps; });
    model->startRecording();
    ASSERT_TRUE(reaches(Case::recording));
    capture.deliver(bufferAt(0), AudioLevelSource::systemAudio);
    EXPECT_EQ(steps, 0);
    int stepsBeforeExport = 0;
    toolkit.exporting.duringExport = [&] { stepsBeforeExport = steps; };
    model->toggleRecording();
    ASSERT_TRUE(reaches(Case::completed));
    EXPECT_EQ(stepsBeforeExport, 1); // the recording is safe
    EXPECT_GT(steps, 1);
}

TEST_F(EngineTest, salvages) {
    fileSystem.put("/recordings/left.partial.mov");
    toolkit.exporting.trackCount = 2;
    launch();
    ASSERT_TRUE(reaches(Case::completed));
    EXPECT_EQ(model->values().lastRecordingURL, "/recordings/Vantoro-2025-03-01-093015.m4a");
    EXPECT_FALSE(fileSystem.exists("/recordings/left.partial.mov"));
}

} // namespace
} // namespace vantoro::testing

// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/commands/record_command.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <functional>

#include <QtCore/QTimer>

#include <gtest/gtest.h>
#include <unistd.h>

#include "control/tasks/qt_scheduler.h"
#include "tests/control/event_loop.h"
#include "tests/engine/recorder/recorder_fixture.h"
#include "tests/support/fake_desktop.h"
#include "tests/support/fake_permissions.h"
#include "tests/support/fake_power.h"
#include "tests/support/memory_preferences.h"

namespace vantoro::testing {
namespace {

using namespace std::chrono_literals;

/// A base class, so that the signals are blocked before any thread starts.
struct BlockedSignals {
    StopSignals signals;
};

class RecordCommandTest : protected BlockedSignals, public RecorderTest {
protected:
    EventLoop loop;
    RecordCommand command;
    MemoryPreferences preferences = preferencesIn("en");
    FakePower power;
    FakeAudioDevices devices;
    FakeOpener opener;
    FakeFolderDialog folderDialog;
    AudioLevelStore levels;
    std::string output;
    std::string errors;
    std::atomic<bool> hasEndedAtOnce = false;
    Ending ending{signals, [this](int, const std::string&) { hasEndedAtOnce = true; }};

    /// Runs the command; calls `meanwhile` once capture has started.
    int run(const std::function<void()>& meanwhile) {
        capture.duringStart = meanwhile;
        ::testing::internal::CaptureStdout();
        ::testing::internal::CaptureStderr();
        const int status = runWithViewModel();
        output = ::testing::internal::GetCapturedStdout();
        errors = ::testing::internal::GetCapturedStderr();
        return status;
    }

    void captureSomething() {
        capture.deliver(bufferAt(0), AudioLevelSource::systemAudio);
        capture.deliver(bufferAt(0, 1), AudioLevelSource::microphone);
    }

private:
    int runWithViewModel() {
        RecordRun recordRun(command, ending, preferences);
        QtScheduler scheduler;
        auto engine = std::make_unique<AudioRecorder>(
            RecorderPlatform{captureAccess, microphone, capture, toolkit, fileSystem, clock});
        RecordingViewModel model(std::move(engine),
                                 {scheduler, power, devices, microphone, opener, folderDialog,
                                  preferences, levels, folder, [this] { ending.progressed(); }});
        return recordRun.run(model);
    }
};

TEST_F(RecordCommandTest, signalEndsTheRecordingAndThePathAloneIsPrinted) {
    EXPECT_EQ(run([&] {
                  captureSomething();
                  ::kill(::getpid(), SIGTERM);
              }),
              0);
    EXPECT_EQ(output, finalFile.string() + "\n");
    EXPECT_EQ(errors, "");
    EXPECT_EQ(toolkit.exportedGains, (std::vector<float>{0.9F, 1.0F}));
    EXPECT_FALSE(hasEndedAtOnce);
}

TEST_F(RecordCommandTest, recordingEndsWhenItsTimeHasPassed) {
    command.seconds = 0.01;
    EXPECT_EQ(run([&] { captureSomething(); }), 0);
    EXPECT_EQ(output, finalFile.string() + "\n");
}

TEST_F(RecordCommandTest, silenceAfterTheLastSoundEndsTheRecording) {
    command.silence = 0.01;
    std::atomic<bool> hasStarted = false;
    QTimer sound;
    QObject::connect(&sound, &QTimer::timeout, [&, frame = std::int64_t{0}]() mutable {
        if (hasStarted) {
            clock.uptime += 1;
            capture.deliver(bufferAt(frame += 256), AudioLevelSource::systemAudio);
        }
    });
    QObject::connect(&levels, &AudioLevelStore::levelChanged, [&] {
        if (levels.systemAudioLevel() > 0) {
            sound.stop();
        }
    });
    sound.start(1ms);
    EXPECT_EQ(run([&] { hasStarted = true; }), 0);
    EXPECT_EQ(output, finalFile.string() + "\n");
    EXPECT_FALSE(sound.isActive());
}

TEST_F(RecordCommandTest, silenceThatNoSoundPrecededEndsNothing) {
    command.silence = 0.01;
    command.seconds = 0.1;
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(run([&] { capture.deliver(bufferAt(0, 2, 256, 0), AudioLevelSource::systemAudio); }),
              0);
    EXPECT_GE(std::chrono::steady_clock::now() - before, 0.1s);
}

TEST_F(RecordCommandTest, optionsReachTheRecorder) {
    command.seconds = 0.01;
    command.microphoneID = "usb-microphone";
    command.systemVolume = 0.5F;
    command.microphoneVolume = 0.25F;
    EXPECT_EQ(run([&] { captureSomething(); }), 0);
    EXPECT_EQ(output, finalFile.string() + "\n");
    EXPECT_EQ(capture.request.microphoneID, "usb-microphone");
    EXPECT_EQ(toolkit.exportedGains, (std::vector<float>{0.5F, 0.25F}));
}

TEST_F(RecordCommandTest, failedStartIsItsDescriptionAndStatusOne) {
    captureAccess.isAllowed = false;
    EXPECT_EQ(run({}), 1);
    EXPECT_EQ(output, "");
    EXPECT_EQ(errors, "Screen & System Audio Recording permission is required. Enable Vantoro in "
                      "System Settings, then reopen the app.\n");
}

TEST_F(RecordCommandTest, brokenCaptureSavesWhatThereIsAndSaysWhy) {
    EXPECT_EQ(run([&] {
                  captureSomething();
                  capture.stopByItself(
                      std::make_exception_ptr(std::runtime_error("The microphone is gone.")));
              }),
              0);
    EXPECT_EQ(output, finalFile.string() + "\n");
    EXPECT_EQ(errors, "Audio capture was interrupted. The captured audio was saved successfully. "
                      "The microphone is gone.\n");
}

TEST_F(RecordCommandTest, recordingThatNeverBeganSaysWhatBrokeIt) {
    toolkit.writing.startSucceeds = false;
    toolkit.writing.error = "Permission denied";
    EXPECT_EQ(run([&] { captureSomething(); }), 1);
    EXPECT_EQ(output, "");
    EXPECT_EQ(errors, "No audio was captured. Check the selected sources and try again. "
                      "Recording failed: Permission denied\n");
    EXPECT_TRUE(fileSystem.paths().empty());
}

TEST_F(RecordCommandTest, nothingCapturedIsAFailure) {
    command.seconds = 0.01;
    EXPECT_EQ(run({}), 1);
    EXPECT_EQ(errors, "No audio was captured. Check the selected sources and try again.\n");
}

TEST_F(RecordCommandTest, failedSavingSaysThatACheckpointWasKept) {
    command.seconds = 0.01;
    toolkit.exporting.exportError =
        std::make_exception_ptr(std::runtime_error("No space left on device"));
    EXPECT_EQ(run([&] { captureSomething(); }), 1);
    EXPECT_EQ(output, "");
    EXPECT_EQ(errors, "No space left on device A recoverable recording checkpoint was kept in the "
                      "recording folder.\n");
}

TEST_F(RecordCommandTest, salvageAfterAFailureIsTheResult) {
    command.seconds = 0.01;
    toolkit.exporting.duringExport = [this, isFirst = true]() mutable {
        if (std::exchange(isFirst, false)) {
            toolkit.exporting.trackCount = 2;
            throw std::runtime_error("disk busy");
        }
    };
    EXPECT_EQ(run([&] { captureSomething(); }), 0);
    EXPECT_EQ(output, finalFile.string() + "\n");
    EXPECT_TRUE(errors.starts_with("disk busy A recoverable")) << errors;
    EXPECT_TRUE(errors.ends_with("A previously interrupted recording was recovered and saved.\n"))
        << errors;
}

TEST_F(RecordCommandTest, nearlyFullDiskIsReportedThenEndsTheRecordingSaved) {
    EXPECT_EQ(run([&] {
                  captureSomething();
                  fileSystem.setCapacity(20'000'000);
                  toolkit.fragmentWritten({48000, 48000}, 0);
                  fileSystem.setCapacity(2'000'000);
                  toolkit.fragmentWritten({INT64_C(11) * 48000, 48000}, 0);
              }),
              0);
    EXPECT_EQ(output, finalFile.string() + "\n");
    EXPECT_EQ(errors, "The disk is nearly full: there is room for about 3 minutes of recording.\n"
                      "The disk is nearly full, so the recording was ended. What was captured was "
                      "saved.\n");
}

TEST_F(RecordCommandTest, lowSpaceIsReportedOnceEvenIfTheUserStops) {
    fileSystem.setCapacity(20'000'000);
    command.seconds = 0.01;
    EXPECT_EQ(run([&] { captureSomething(); }), 0);
    EXPECT_EQ(errors, "The disk is nearly full: there is room for about 3 minutes of recording.\n");
}

TEST_F(RecordCommandTest, diskWithoutRoomIsAFailureBeforeAnythingIsRecorded) {
    fileSystem.setCapacity(2'000'000);
    command.seconds = 0.01;
    EXPECT_EQ(run({}), 1);
    EXPECT_EQ(output, "");
    EXPECT_EQ(errors, "There is not enough room on the disk for a recording. Free some space, or "
                      "choose another folder.\n");
    EXPECT_TRUE(fileSystem.paths().empty());
}

TEST_F(RecordCommandTest, sleepEndsTheRecordingSaved) {
    EXPECT_EQ(run([&] {
                  captureSomething();
                  QMetaObject::invokeMethod(qApp, [this] { power.sleep(); });
              }),
              0);
    EXPECT_EQ(output, finalFile.string() + "\n");
    EXPECT_EQ(errors, "Recording was interrupted by sleep. The captured audio was saved "
                      "successfully.\n");
}

TEST_F(RecordCommandTest, messagesAreInTheLanguageOfThisRunWhichIsNotKept) {
    PreferencesForOneRun ofThisRun(preferences);
    ofThisRun.set(Preference::appLanguage, "zh-Hans");
    EXPECT_EQ(L10n(ofThisRun).language(), AppLanguage::chinese);
    EXPECT_EQ(ofThisRun.get(Preference::outputDirectory), std::nullopt);
    EXPECT_EQ(L10n(preferences).language(), AppLanguage::english);
    EXPECT_TRUE(preferences.stored.empty());
}

TEST_F(RecordCommandTest, usesChineseByDefault) {
    preferences.values.clear();
    captureAccess.isAllowed = false;
    EXPECT_EQ(run({}), 1);
    EXPECT_EQ(errors, L10n::text(L10n::Key::screenPermissionDenied, AppLanguage::chinese) + "\n");
}

TEST_F(RecordCommandTest, withoutAnySourceThereIsNothingToRecord) {
    command.systemAudio = false;
    command.microphone = false;
    EXPECT_EQ(run({}), 1);
    EXPECT_EQ(errors, "Turn on System Audio or Microphone before recording.\n");
}

} // namespace
} // namespace vantoro::testing

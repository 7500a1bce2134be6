// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/recorder/logged_recorder.h"

#include <cerrno>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "engine/failure.h"
#include "tests/support/fake_clock.h"
#include "tests/support/fake_recorder.h"

namespace vantoro::testing {
namespace {

using Level = RecordingLog::Level;

class MemoryLog final : public RecordingLog {
public:
    void write(Level level, const std::string& message,
               const std::string& recording) noexcept override {
        lines.push_back(std::to_string(static_cast<int>(level)) + " " + recording + " " + message);
    }

    std::vector<std::string> lines;
};

class LoggedRecorderTest : public ::testing::Test {
protected:
    MemoryLog log;
    FakeClock clock;
    RecorderScript script;
    LoggedRecorder recorder{std::make_unique<FakeRecorder>(script), log, clock};
    RecordingOptions options{.captureSystemAudio = true,
                             .captureMicrophone = true,
                             .microphoneDeviceID = "bluez_input.00:11:22",
                             .outputDirectory = "/home/me/private"};

    Recorder& inner() const { return *script.recorder; }

    /// What the log holds; forgets it.
    std::vector<std::string> logged() { return std::exchange(log.lines, {}); }
};

using Lines = std::vector<std::string>;

TEST_F(LoggedRecorderTest, tellsTheBeginningAndTheEndOfARecordingByItsStart) {
    recorder.start(options);
    EXPECT_EQ(logged(), Lines{"6 2025-03-01T09:30:15 The recording began, of system audio and a "
                              "chosen microphone."});
    EXPECT_EQ(recorder.stop(1, 1), script.recording);
    EXPECT_EQ(logged(), Lines{"6 2025-03-01T09:30:15 The recording is saved as recorded.m4a."});
}

TEST_F(LoggedRecorderTest, namesNeitherFoldersNorDevices) {
    script.startError = std::make_exception_ptr(
        FileFailure(FileAction::createFolder, options.outputDirectory, EACCES));
    EXPECT_THROW(recorder.start(options), FileFailure);
    script.startError = std::make_exception_ptr(
        Failure(FailureCode::microphoneUnknown, *options.microphoneDeviceID));
    EXPECT_THROW(recorder.start(options), Failure);
    EXPECT_EQ(logged(), (Lines{"3 2025-03-01T09:30:15 The recording did not begin. A file could "
                               "not be used: Permission denied.",
                               "3 2025-03-01T09:30:15 The recording did not begin. The microphone "
                               "\"chosen one\" was not found."}));
}

TEST_F(LoggedRecorderTest, tellsWhatBreaksARecordingAndPassesItOn) {
    std::exception_ptr received;
    recorder.onCaptureInterrupted = [&](const std::exception_ptr& cause) { received = cause; };
    const auto cause = std::make_exception_ptr(Failure(FailureCode::microphoneDisconnected));
    inner().onCaptureInterrupted(cause);
    EXPECT_EQ(received, cause);
    EXPECT_EQ(logged(), Lines{"3  The recording ends by itself. The microphone was disconnected."});
    script.stopError = std::make_exception_ptr(RecordingError(RecordingError::Case::exportFailed));
    EXPECT_THROW(recorder.stop(1, 1), RecordingError);
    EXPECT_EQ(logged(), Lines{"3  The recording was not saved. exportFailed What was captured is "
                              "kept."});
}

TEST_F(LoggedRecorderTest, tellsOfSourcesLossesAndTheDiskWithoutAnybodyListening) {
    inner().onSourceCondition(AudioLevelSource::microphone, SourceCondition::muted);
    inner().onSourceCondition(AudioLevelSource::systemAudio, SourceCondition::delivering);
    inner().onSoundLoss({.cause = SoundLoss::Cause::notTakenInTime,
                         .length = SoundLoss::Duration(1.25),
                         .source = std::nullopt,
                         .reason = nullptr});
    inner().onDiskRoom({.advice = RoomAdvice::tell, .minutesLeft = 9});
    inner().onTracksNotKept({.original = "/home/me/private/one.mov",
                             .reason = std::make_exception_ptr(
                                 FileFailure(FileAction::create, "/home/me/private", ENOSPC))});
    inner().onAudioLevel(AudioLevelSource::microphone, 0.5F);
    inner().onExportProgress(0.5);
    inner().onRecordingSafe();
    EXPECT_EQ(logged(), (Lines{"5  The microphone is muted.", "5  System audio delivers sound.",
                               "3  1.3 s of sound were not taken in time.",
                               "4  The disk has room for 9 more minutes.",
                               "3  The sources could not be written to files of their own. A file "
                               "could not be used: No space left on device."}));
}

TEST_F(LoggedRecorderTest, passesLevelsProgressAndSafetyOn) {
    std::string received;
    recorder.onAudioLevel = [&](AudioLevelSource, float level) {
        received += "level " + std::to_string(level > 0.4F);
    };
    recorder.onExportProgress = [&](double fraction) {
        received += " progress " + std::to_string(fraction > 0.4);
    };
    recorder.onSalvageProgress = [&](double fraction) {
        received += " salvage " + std::to_string(fraction > 0.4);
    };
    recorder.onRecordingSafe = [&] { received += " safe"; };
    inner().onAudioLevel(AudioLevelSource::microphone, 0.5F);
    inner().onExportProgress(0.5);
    inner().onSalvageProgress(0.5);
    inner().onRecordingSafe();
    EXPECT_EQ(received, "level 1 progress 1 salvage 1 safe");
}

TEST_F(LoggedRecorderTest, tellsWhatASalvageFound) {
    script.salvaged = {"/music/one.m4a"};
    script.keptOriginals = {"/music/two.incomplete.mov"};
    recorder.recoverIncompleteRecordings("/music", std::nullopt, {});
    logSalvage(log, {.recordings = {},
                     .keptOriginals = {},
                     .failures = {{.location = "/music/.three",
                                   .error = std::make_exception_ptr(
                                       FileFailure(FileAction::read, "/music/.three", EIO))}}});
    EXPECT_EQ(logged(),
              (Lines{"5  An interrupted recording is saved as one.m4a.",
                     "4  It could be read only in part: two.incomplete.mov is kept.",
                     "3  An interrupted recording was not saved. A file could not be used: "
                     "Input/output error."}));
}

} // namespace
} // namespace vantoro::testing

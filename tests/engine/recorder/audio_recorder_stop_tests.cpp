// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/recorder/audio_recorder.h"

#include <algorithm>
#include <future>
#include <thread>

#include <gtest/gtest.h>

#include "tests/engine/recorder/recorder_fixture.h"

namespace vantoro::testing {
namespace {

using Case = RecordingError::Case;

class AudioRecorderStop : public RecorderTest {
protected:
    std::vector<std::string> interruptions;

    AudioRecorderStop() {
        recorder.onCaptureInterrupted = [this](const std::exception_ptr& error) {
            interruptions.push_back(messageOf(error));
        };
    }

    static std::exception_ptr platformError(const char* text = "the platform's own") {
        return std::make_exception_ptr(std::runtime_error(text));
    }

    void startAndCapture(const RecordingOptions& options) {
        recorder.start(options);
        if (options.captureSystemAudio) {
            capture.deliver(bufferAt(0), AudioLevelSource::systemAudio);
        }
        if (options.captureMicrophone) {
            capture.deliver(bufferAt(0, 1), AudioLevelSource::microphone);
        }
    }
};

TEST_F(AudioRecorderStop, returnsTheFinalFileAndRemovesTheTemporaryOne) {
    startAndCapture(bothSources());
    EXPECT_EQ(temporaryFiles().size(), 1U);
    EXPECT_EQ(recorder.stop(0.9F, 0.5F), finalFile);
    EXPECT_EQ(fileSystem.paths(), std::set<std::filesystem::path>{finalFile});
    EXPECT_EQ(toolkit.exportedGains, (std::vector<float>{0.9F, 0.5F}));
    expectIdle();
}

TEST_F(AudioRecorderStop, filesTellWhenTheRecordingStartedAndItsTitle) {
    auto options = bothSources();
    options.title = "Interview";
    const WallTime started = clock.wall;
    startAndCapture(options);
    clock.wall.seconds += 60;
    recorder.stop(1, 1);
    EXPECT_EQ(toolkit.tags, (RecordingTags{.start = started, .title = "Interview"}));
}

TEST_F(AudioRecorderStop, marksGoToTheWriterWithTheMomentAtWhichTheyWereMade) {
    recorder.mark("too early");
    startAndCapture(bothSources());
    clock.uptime = 1234.5;
    recorder.mark("Answer");
    clock.uptime = 1300;
    recorder.stop(1, 1);
    recorder.mark("too late");
    EXPECT_EQ(log.startingWith("mark"), (std::vector<std::string>{"mark 59256000 Answer"}));
}

TEST_F(AudioRecorderStop, finalFileIsTitledAfterItsName) {
    fileSystem.put(finalFile);
    startAndCapture(bothSources());
    recorder.stop(1, 1);
    EXPECT_EQ(toolkit.exportedTitle, "Vantoro-2025-03-01-093015-2");
}

TEST_F(AudioRecorderStop, saysThatTheRecordingIsSafeBetweenFinishingAndMixing) {
    recorder.onRecordingSafe = [this] { log.add("safe"); };
    startAndCapture(bothSources());
    recorder.stop(1, 1);
    const auto calls = log.calls();
    const auto finished = std::ranges::find(calls, "finish");
    const auto safe = std::ranges::find(finished, calls.end(), "safe");
    ASSERT_NE(safe, calls.end());
    EXPECT_TRUE(std::ranges::find_if(safe, calls.end(), [](const std::string& call) {
                    return call.starts_with("openRecording");
                }) != calls.end());
    EXPECT_EQ(std::ranges::count(calls, "safe"), 1);
}

TEST_F(AudioRecorderStop, neverCallsARecordingSafeThatCouldNotBeFinished) {
    recorder.onRecordingSafe = [this] { log.add("safe"); };
    toolkit.writing.statusAfterFinish = WriterStatus::failed;
    startAndCapture(bothSources());
    EXPECT_THROW(recorder.stop(1, 1), std::exception);
    EXPECT_FALSE(log.contains("safe"));
}

TEST_F(AudioRecorderStop, temporaryFileIsRemovedOnlyWhenTheFinalOnesNameIsOnTheDisk) {
    startAndCapture(bothSources());
    recorder.stop(1, 1);
    const auto calls = log.calls();
    const auto synced = std::ranges::find(calls, "syncFolder /recordings");
    ASSERT_NE(synced, calls.end());
    const auto removesTemporary = [](const std::string& call) {
        return call.starts_with("remove .Vantoro-");
    };
    EXPECT_EQ(std::find_if(calls.begin(), synced, removesTemporary), synced);
    EXPECT_NE(std::find_if(synced, calls.end(), removesTemporary), calls.end());
}

TEST_F(AudioRecorderStop, microphoneAloneIsExportedAtItsVolumeEvenWithTheSystemsAtZero) {
    startAndCapture(microphoneOnly());
    recorder.stop(0, 0.75F);
    EXPECT_EQ(toolkit.exportedGains, std::vector<float>{0.75F});
}

TEST_F(AudioRecorderStop, systemAudioAloneIsExportedAtItsVolume) {
    startAndCapture(systemAudioOnly());
    recorder.stop(0.9F, 0);
    EXPECT_EQ(toolkit.exportedGains, std::vector<float>{0.9F});
}

TEST_F(AudioRecorderStop, stopWithoutAStartFailsWithNoAudioCaptured) {
    EXPECT_EQ(errorOf([&] { recorder.stop(1, 1); }), Case::noAudioCaptured);
    EXPECT_TRUE(log.calls().empty());
}

TEST_F(AudioRecorderStop, stopBeforeAnyBufferFailsWithNoAudioCapturedAndLeavesNoFile) {
    recorder.start(bothSources());
    EXPECT_EQ(errorOf([&] { recorder.stop(1, 1); }), Case::noAudioCaptured);
    EXPECT_TRUE(fileSystem.paths().empty());
    EXPECT_FALSE(recorder.hasKeptRecording());
    EXPECT_TRUE(log.contains("stopCapture"));
    expectIdle();
}

TEST_F(AudioRecorderStop, buffersThatWereQueuedAreWrittenBeforeTheFileIsFinished) {
    startAndCapture(systemAudioOnly());
    std::promise<void> gate;
    capture.queue->async([&] { gate.get_future().wait(); });
    capture.deliverLater(bufferAt(256), AudioLevelSource::systemAudio);
    auto stopping = std::async(std::launch::async, [&] { return recorder.stop(1, 1); });
    gate.set_value();
    EXPECT_EQ(stopping.get(), finalFile);
    const auto calls = log.calls();
    EXPECT_LT(std::ranges::find(calls, "append system 256"),
              std::ranges::find(calls, "end system"));
}

TEST_F(AudioRecorderStop, failedStopOfTheCaptureIsNotTheStopsFailure) {
    startAndCapture(bothSources());
    capture.stopError = platformError();
    EXPECT_EQ(recorder.stop(1, 1), finalFile);
    EXPECT_TRUE(interruptions.empty());
}

TEST_F(AudioRecorderStop, whatComesAfterAFailedStopOfTheCaptureIsLeftOut) {
    startAndCapture(systemAudioOnly());
    capture.stopError = platformError();
    capture.whenStreamGoes = [this] {
        capture.deliver(bufferAt(256), AudioLevelSource::systemAudio);
    };
    EXPECT_EQ(recorder.stop(1, 1), finalFile);
    EXPECT_TRUE(log.contains("append system 0"));
    EXPECT_FALSE(log.contains("append system 256"));
}

TEST_F(AudioRecorderStop, streamIsGoneBeforeTheFileIsFinished) {
    capture.whenStreamGoes = [this] { log.add("stream is gone"); };
    startAndCapture(bothSources());
    recorder.stop(1, 1);
    const auto calls = log.calls();
    EXPECT_LT(std::ranges::find(calls, "stream is gone"), std::ranges::find(calls, "end system"));
}

TEST_F(AudioRecorderStop, eachSourcesSoundGoesToItsOwnTrackAlone) {
    startAndCapture(bothSources());
    capture.deliver(bufferAt(256), AudioLevelSource::systemAudio);
    capture.deliver(bufferAt(512, 1), AudioLevelSource::microphone);
    EXPECT_EQ(log.startingWith("append"),
              (std::vector<std::string>{"append system 0", "append microphone 0",
                                        "append system 256", "append microphone 512"}));
}

TEST_F(AudioRecorderStop, whatAnEarlierRecordingKeptStaysWhenTheNextOneCannotStart) {
    startAndCapture(bothSources());
    toolkit.exporting.exportError = platformError();
    EXPECT_THROW(recorder.stop(1, 1), std::exception);
    const auto kept = temporaryFiles();
    ASSERT_EQ(kept.size(), 1U);
    toolkit.writing.creationError = platformError();
    EXPECT_THROW(recorder.start(bothSources()), std::exception);
    EXPECT_EQ(temporaryFiles(), kept);
}

TEST_F(AudioRecorderStop, streamThatStoppedByItselfIsReportedAndNotStoppedAgain) {
    startAndCapture(bothSources());
    const auto error = platformError("the sound server is gone");
    capture.stopByItself(error);
    EXPECT_EQ(interruptions, std::vector<std::string>{"the sound server is gone"});
    EXPECT_EQ(capture.liveStreams, 0);
    EXPECT_EQ(recorder.stop(1, 1), finalFile) << "what was captured is saved";
    EXPECT_FALSE(log.contains("stopCapture"));
    expectIdle();
}

TEST_F(AudioRecorderStop, interruptionPassesThePlatformsErrorOnAsItIs) {
    std::exception_ptr reported;
    recorder.onCaptureInterrupted = [&](std::exception_ptr error) { reported = std::move(error); };
    startAndCapture(bothSources());
    const auto error = platformError();
    capture.stopByItself(error);
    EXPECT_EQ(reported, error);
}

TEST_F(AudioRecorderStop, streamThatStopsBeforeAnyBufferLeavesNothingToSave) {
    recorder.start(bothSources());
    capture.stopByItself(platformError());
    EXPECT_EQ(errorOf([&] { recorder.stop(1, 1); }), Case::noAudioCaptured);
    EXPECT_TRUE(fileSystem.paths().empty());
    expectIdle();
}

TEST_F(AudioRecorderStop, interruptionWithoutAReceiverIsNoProblem) {
    recorder.onCaptureInterrupted = nullptr;
    startAndCapture(bothSources());
    capture.stopByItself(platformError());
    EXPECT_EQ(recorder.stop(1, 1), finalFile);
}

TEST_F(AudioRecorderStop, writerThatCouldNotStartLeavesNoFile) {
    toolkit.writing.startSucceeds = false;
    startAndCapture(bothSources());
    EXPECT_EQ(interruptions.size(), 1U);
    EXPECT_EQ(capture.liveStreams, 1) << "the stream runs until the stop";
    EXPECT_EQ(errorOf([&] { recorder.stop(1, 1); }), Case::noAudioCaptured);
    EXPECT_TRUE(fileSystem.paths().empty());
    expectIdle();
}

TEST_F(AudioRecorderStop, whatWasWrittenBeforeAWriterFailureIsExported) {
    startAndCapture(bothSources());
    toolkit.writing.appendSucceeds = false;
    capture.deliver(bufferAt(256), AudioLevelSource::systemAudio);
    EXPECT_EQ(interruptions.size(), 1U);
    EXPECT_EQ(recorder.stop(1, 1), finalFile);
    EXPECT_TRUE(temporaryFiles().empty());
}

TEST_F(AudioRecorderStop, fileThatCannotBeFinishedIsKept) {
    startAndCapture(bothSources());
    toolkit.writing.statusAfterFinish = WriterStatus::failed;
    EXPECT_EQ(textOf([&] { recorder.stop(1, 1); }),
              "writerFailed: Unable to finish the recording.");
    EXPECT_EQ(temporaryFiles().size(), 1U);
    EXPECT_TRUE(recorder.hasKeptRecording());
    EXPECT_TRUE(log.startingWith("export").empty());
    expectIdle();
}

TEST_F(AudioRecorderStop, fileThatCannotBeFinishedFailsWithTheWritersError) {
    startAndCapture(bothSources());
    toolkit.writing.statusAfterFinish = WriterStatus::failed;
    toolkit.writing.error = "No space left on device";
    EXPECT_EQ(textOf([&] { recorder.stop(1, 1); }), "writerFailed: No space left on device");
}

TEST_F(AudioRecorderStop, missingRecordingFolderFailsTheExportAndKeepsTheTemporaryFile) {
    startAndCapture({true, true, std::nullopt, ""});
    EXPECT_EQ(errorOf([&] { recorder.stop(1, 1); }), Case::exportFailed);
    EXPECT_EQ(temporaryFiles().size(), 1U);
    expectIdle();
}

TEST_F(AudioRecorderStop, failedExportKeepsTheTemporaryFileAndNothingElse) {
    startAndCapture(bothSources());
    toolkit.exporting.exportError = platformError();
    EXPECT_EQ(textOf([&] { recorder.stop(1, 1); }), "the platform's own");
    EXPECT_EQ(fileSystem.paths().size(), 1U);
    EXPECT_EQ(temporaryFiles().size(), 1U);
    EXPECT_TRUE(recorder.hasKeptRecording());
    expectIdle();
    EXPECT_FALSE(recorder.hasKeptRecording());
}

TEST_F(AudioRecorderStop, finalFileWhoseNameCannotBeSyncedIsTakenBack) {
    startAndCapture(bothSources());
    fileSystem.syncFolderError = platformError();
    EXPECT_EQ(textOf([&] { recorder.stop(1, 1); }), "the platform's own");
    EXPECT_FALSE(fileSystem.exists(finalFile));
    EXPECT_EQ(temporaryFiles().size(), 1U);
}

TEST_F(AudioRecorderStop, temporaryFileThatCannotBeOpenedIsKept) {
    startAndCapture(bothSources());
    toolkit.exporting.openError = platformError();
    EXPECT_EQ(textOf([&] { recorder.stop(1, 1); }), "the platform's own");
    EXPECT_EQ(temporaryFiles().size(), 1U);
    EXPECT_FALSE(recorder.hasKeptRecording()) << "it cannot be read";
}

TEST_F(AudioRecorderStop, fileThatHoldsNoSoundIsNotCalledARecording) {
    startAndCapture(bothSources());
    toolkit.writing.statusAfterFinish = WriterStatus::failed;
    for (const MediaTime duration : {MediaTime(), zeroTime}) {
        toolkit.exporting.duration = duration;
        EXPECT_EQ(errorOf([&] { recorder.stop(1, 1); }), Case::writerFailed);
        EXPECT_FALSE(recorder.hasKeptRecording());
        startAndCapture(bothSources());
    }
}

TEST_F(AudioRecorderStop, temporaryFileThatCannotBeRemovedIsNoFailure) {
    startAndCapture(bothSources());
    fileSystem.removeErrors[temporaryFiles().front()] = platformError();
    EXPECT_EQ(recorder.stop(1, 1), finalFile);
}

TEST_F(AudioRecorderStop, twoRecordingsInARowHaveTheirOwnFilesAndLeaveNothingElse) {
    startAndCapture(bothSources());
    const auto first = temporaryFiles();
    const auto firstFinal = recorder.stop(1, 1);
    startAndCapture(bothSources());
    const auto second = temporaryFiles();
    const auto secondFinal = recorder.stop(1, 1);
    ASSERT_EQ(first.size(), 1U);
    ASSERT_EQ(second.size(), 1U);
    EXPECT_NE(first, second);
    EXPECT_EQ(secondFinal, folder / "Vantoro-2025-03-01-093015-2.m4a");
    EXPECT_EQ(fileSystem.paths(), (std::set<std::filesystem::path>{firstFinal, secondFinal}));
}

TEST_F(AudioRecorderStop, levelsAreFreshInEveryRecording) {
    int levels = 0;
    recorder.onAudioLevel = [&](AudioLevelSource, float) { ++levels; };
    startAndCapture(bothSources());
    recorder.stop(1, 1);
    EXPECT_EQ(levels, 2);
    startAndCapture(bothSources());
    recorder.stop(1, 1);
    EXPECT_EQ(levels, 4) << "the clock stood still, yet the first buffers are published";
}

TEST_F(AudioRecorderStop, mutedMicrophoneIsToldOfOnTheCaptureQueue) {
    std::vector<std::pair<AudioLevelSource, SourceCondition>> reported;
    recorder.onSourceCondition = [&](AudioLevelSource source, SourceCondition condition) {
        EXPECT_TRUE(capture.queue->isCurrent());
        reported.emplace_back(source, condition);
    };
    startAndCapture(bothSources());
    capture.muteMicrophone(true);
    capture.muteMicrophone(false);
    recorder.stop(1, 1);
    EXPECT_EQ(reported, (std::vector<std::pair<AudioLevelSource, SourceCondition>>{
                            {AudioLevelSource::microphone, SourceCondition::muted},
                            {AudioLevelSource::microphone, SourceCondition::delivering}}));
}

TEST_F(AudioRecorderStop, unwrittenSoundIsReportedAndTheTemporaryFileIsSetAside) {
    std::vector<SoundLoss> reported;
    recorder.onSoundLoss = [&](const SoundLoss& loss) { reported.push_back(loss); };
    toolkit.writing.secondsNotWritten = 7.5;
    toolkit.writing.error = "No space left on device";
    startAndCapture(bothSources());
    EXPECT_EQ(recorder.stop(1, 1), finalFile);
    ASSERT_EQ(reported.size(), 1U);
    EXPECT_EQ(reported.front().cause, SoundLoss::Cause::notWritten);
    EXPECT_EQ(reported.front().length.count(), 7.5);
    EXPECT_EQ(reported.front().source, std::nullopt);
    EXPECT_EQ(whatOf(reported.front().reason), "No space left on device");
    auto aside = finalFile;
    aside.replace_extension("incomplete.mov");
    EXPECT_EQ(fileSystem.paths(), (std::set<std::filesystem::path>{finalFile, aside}));
    expectIdle();
}

TEST_F(AudioRecorderStop, soundThatTheFileHadNoRoomForIsReported) {
    std::vector<SoundLoss> reported;
    recorder.onSoundLoss = [&](const SoundLoss& loss) { reported.push_back(loss); };
    startAndCapture(bothSources());
    toolkit.writing.ready = false;
    capture.deliver(bufferAt(256, 2, 480), AudioLevelSource::systemAudio);
    capture.deliver(bufferAt(736, 2, 480), AudioLevelSource::systemAudio);
    capture.deliver(bufferAt(256, 1, 480), AudioLevelSource::microphone);
    recorder.stop(1, 1);
    ASSERT_EQ(reported.size(), 1U);
    EXPECT_EQ(reported.front().cause, SoundLoss::Cause::notWritten);
    EXPECT_DOUBLE_EQ(reported.front().length.count(), 0.02) << "the longer of both";
}

TEST_F(AudioRecorderStop, completeRecordingReportsNoLoss) {
    bool isTold = false;
    recorder.onSoundLoss = [&](const SoundLoss&) { isTold = true; };
    startAndCapture(bothSources());
    recorder.stop(1, 1);
    EXPECT_FALSE(isTold);
}

TEST_F(AudioRecorderStop, incompleteTemporaryFileIsSetAside) {
    toolkit.exporting.isWhole = false;
    startAndCapture(bothSources());
    recorder.stop(1, 1);
    EXPECT_TRUE(temporaryFiles().empty());
    EXPECT_EQ(fileSystem.paths().size(), 2U);
}

TEST_F(AudioRecorderStop, soundNotTakenInTimeIsReported) {
    std::vector<SoundLoss> reported;
    recorder.onSoundLoss = [&](const SoundLoss& loss) { reported.push_back(loss); };
    startAndCapture(bothSources());
    capture.loseSound(AudioLevelSource::systemAudio, 2.5);
    capture.loseSound(AudioLevelSource::microphone, 0.25);
    recorder.stop(1, 1);
    constexpr auto cause = SoundLoss::Cause::notTakenInTime;
    EXPECT_EQ(reported,
              (std::vector<SoundLoss>{
                  {cause, SoundLoss::Duration(2.5), AudioLevelSource::systemAudio, nullptr},
                  {cause, SoundLoss::Duration(0.25), AudioLevelSource::microphone, nullptr}}));
}

TEST_F(AudioRecorderStop, lossWithoutACallbackIsNoFailure) {
    startAndCapture(bothSources());
    capture.loseSound(AudioLevelSource::systemAudio, 2.5);
    EXPECT_NO_THROW(recorder.stop(1, 1));
}

TEST_F(AudioRecorderStop, progressOfTheExportIsReported) {
    double progress = 0;
    recorder.onExportProgress = [&](double fraction) { progress = fraction; };
    startAndCapture(bothSources());
    recorder.stop(1, 1);
    EXPECT_EQ(progress, 1);
}

TEST_F(AudioRecorderStop, destroyedWhileRecordingKeepsTheTemporaryFile) {
    auto other = std::make_unique<AudioRecorder>(
        RecorderPlatform{captureAccess, microphone, capture, toolkit, fileSystem, clock});
    bool onCaptureQueue = false;
    capture.whenStreamGoes = [&] { onCaptureQueue = capture.queue->isCurrent(); };
    other->start(bothSources());
    capture.deliver(bufferAt(0), AudioLevelSource::systemAudio);
    other.reset();
    EXPECT_TRUE(onCaptureQueue);
    EXPECT_EQ(capture.liveStreams, 0);
    EXPECT_EQ(temporaryFiles().size(), 1U);
}

TEST_F(AudioRecorderStop, destroyedBeforeAnyBufferLeavesNoFile) {
    auto other = std::make_unique<AudioRecorder>(
        RecorderPlatform{captureAccess, microphone, capture, toolkit, fileSystem, clock});
    other->start(bothSources());
    EXPECT_EQ(temporaryFiles().size(), 1U);
    other.reset();
    EXPECT_TRUE(fileSystem.paths().empty());
}

} // namespace
} // namespace vantoro::testing

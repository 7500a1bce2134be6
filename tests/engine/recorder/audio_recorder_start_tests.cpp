// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/recorder/audio_recorder.h"

#include <gtest/gtest.h>

#include "tests/engine/recorder/recorder_fixture.h"

namespace vantoro::testing {
namespace {

using Case = RecordingError::Case;

class AudioRecorderStart : public RecorderTest {
protected:
    static std::exception_ptr platformError() {
        return std::make_exception_ptr(std::runtime_error("the platform's own"));
    }

    std::optional<Case> startError(const RecordingOptions& options) {
        return errorOf([&] { recorder.start(options); });
    }
};

TEST_F(AudioRecorderStart, takesItsStepsInOrder) {
    recorder.start(bothSources());
    EXPECT_EQ(toolkit.intervals.first, (MediaTime{1, 1}));
    EXPECT_EQ(toolkit.intervals.others, (MediaTime{10, 1}));
    auto calls = log.calls();
    ASSERT_GE(calls.size(), 4U);
    EXPECT_TRUE(calls[3].starts_with("makeWriter /recordings/.Vantoro-")) << calls[3];
    calls[3] = "makeWriter";
    EXPECT_EQ(calls, (std::vector<std::string>{
                         "capture access", "microphone status", "createFolders /recordings",
                         "makeWriter", "availableSpace /recordings", "add 2 ch 192000 b/s",
                         "add 1 ch 96000 b/s", "makeStream com.vantoro.capture", "startCapture"}));
}

TEST_F(AudioRecorderStart, passesTheExpectedVolumesToTheWriter) {
    recorder.expectVolumes(0.9F, 0.5F);
    recorder.start(bothSources());
    EXPECT_EQ(log.startingWith("expectMix"), std::vector<std::string>{"expectMix 0.90 0.50"});
    recorder.expectVolumes(0.25F, 0.5F);
    capture.deliver(bufferAt(0), AudioLevelSource::systemAudio); // queued after it
    EXPECT_EQ(log.startingWith("expectMix").back(), "expectMix 0.25 0.50");
}

TEST_F(AudioRecorderStart, expectsNoVolumeOfASourceThatIsOff) {
    recorder.expectVolumes(0.9F, 0.5F);
    recorder.start({false, true, std::nullopt, folder});
    EXPECT_EQ(log.startingWith("expectMix"), std::vector<std::string>{"expectMix 0.50"});
}

TEST_F(AudioRecorderStart, asksForTheSourcesAndTheMicrophoneThatWereChosen) {
    recorder.start({true, true, "usb-microphone", folder});
    EXPECT_TRUE(capture.request.systemAudio);
    EXPECT_TRUE(capture.request.microphone);
    EXPECT_EQ(capture.request.microphoneID, "usb-microphone");
}

TEST_F(AudioRecorderStart, bothSourcesOffFailsBeforeAnythingIsAsked) {
    EXPECT_EQ(startError({false, false, std::nullopt, folder}), Case::noAudioSource);
    EXPECT_TRUE(log.calls().empty());
}

TEST_F(AudioRecorderStart, permissionGrantedOnTheSecondRequestIsEnough) {
    captureAccess.isAllowed = false;
    captureAccess.isAllowedNextTime = true;
    EXPECT_EQ(startError(bothSources()), std::nullopt);
}

TEST_F(AudioRecorderStart, refusedCaptureFailsEvenForTheMicrophoneAlone) {
    captureAccess.isAllowed = false;
    EXPECT_EQ(startError(microphoneOnly()), Case::screenPermissionDenied);
    EXPECT_EQ(log.calls(), (std::vector<std::string>{"capture access", "capture access"}));
}

TEST_F(AudioRecorderStart, microphonePermissionFollowsItsStatus) {
    using enum AuthorizationStatus;

    struct Row {
        AuthorizationStatus status;
        bool granted;
        std::optional<Case> error;
        bool asked;
    };

    for (const Row& row :
         {Row{authorized, false, std::nullopt, false}, Row{notDetermined, true, std::nullopt, true},
          Row{notDetermined, false, Case::microphonePermissionDenied, true},
          Row{denied, true, Case::microphonePermissionDenied, false},
          Row{restricted, true, Case::microphonePermissionDenied, false}}) {
        CallLog rowLog;
        FakeMicrophoneAccess access(rowLog);
        access.current = row.status;
        access.grantedOnRequest = row.granted;
        AudioRecorder rowRecorder({captureAccess, access, capture, toolkit, fileSystem, clock});
        EXPECT_EQ(errorOf([&] { rowRecorder.start(microphoneOnly()); }), row.error)
            << static_cast<int>(row.status);
        EXPECT_EQ(rowLog.contains("microphone request"), row.asked);
    }
}

TEST_F(AudioRecorderStart, systemAudioAloneNeverAsksForTheMicrophone) {
    microphone.current = AuthorizationStatus::denied;
    EXPECT_EQ(startError(systemAudioOnly()), std::nullopt);
    EXPECT_FALSE(log.contains("microphone status"));
    EXPECT_EQ(toolkit.trackCount, 1U);
    EXPECT_TRUE(log.contains("add 2 ch 192000 b/s"));
    EXPECT_FALSE(capture.request.microphone);
}

TEST_F(AudioRecorderStart, microphoneAloneHasOneTrackAndCapturesNoSystemAudio) {
    EXPECT_EQ(startError(microphoneOnly()), std::nullopt);
    EXPECT_EQ(toolkit.trackCount, 1U);
    EXPECT_TRUE(log.contains("add 1 ch 96000 b/s"));
    EXPECT_FALSE(capture.request.systemAudio);
    EXPECT_TRUE(capture.request.microphone);
}

TEST_F(AudioRecorderStart, microphoneIdentifierIsIgnoredWhileTheMicrophoneIsOff) {
    recorder.start({true, false, "usb-microphone", folder});
    EXPECT_EQ(capture.request.microphoneID, std::nullopt);
}

TEST_F(AudioRecorderStart, emptyMicrophoneIdentifierIsPassedOnUnchanged) {
    recorder.start({false, true, "", folder});
    EXPECT_EQ(capture.request.microphoneID, "");
}

TEST_F(AudioRecorderStart, folderThatCannotBeCreatedFailsWithThatError) {
    fileSystem.createFoldersError = platformError();
    EXPECT_EQ(textOf([&] { recorder.start(bothSources()); }), "the platform's own");
    EXPECT_TRUE(log.startingWith("makeWriter").empty());
}

TEST_F(AudioRecorderStart, diskWithoutRoomFailsBeforeCaptureIsAskedForAndLeavesNoFile) {
    fileSystem.setCapacity(5'000'000);
    EXPECT_EQ(startError(bothSources()), Case::diskTooFull);
    EXPECT_FALSE(log.contains("makeStream com.vantoro.capture"));
    EXPECT_TRUE(fileSystem.paths().empty());
    EXPECT_EQ(startError(microphoneOnly()), std::nullopt) << "one track needs less";
}

TEST_F(AudioRecorderStart, reportsShortRoomAtTheStart) {
    std::vector<DiskRoom> reported;
    recorder.onDiskRoom = [&](DiskRoom room) {
        EXPECT_FALSE(log.contains("startCapture"));
        reported.push_back(room);
    };
    fileSystem.setCapacity(20'000'000);
    recorder.start(bothSources());
    EXPECT_EQ(reported, (std::vector<DiskRoom>{{RoomAdvice::tell, 3}}));
}

TEST_F(AudioRecorderStart, checksTheRoomAfterEachFragment) {
    std::vector<DiskRoom> reported;
    recorder.onDiskRoom = [&](DiskRoom room) { reported.push_back(room); };
    recorder.start(bothSources());
    toolkit.fragmentWritten({48000, 48000}, 0);
    EXPECT_TRUE(reported.empty());
    fileSystem.setCapacity(126'000'000);
    toolkit.fragmentWritten({INT64_C(3600) * 48000, 48000}, 0);
    toolkit.fragmentWritten({INT64_C(3610) * 48000, 48000}, 1'000'000);
    EXPECT_EQ(reported, (std::vector<DiskRoom>{{RoomAdvice::tell, 0}, {RoomAdvice::end, 0}}));
}

TEST_F(AudioRecorderStart, eachRecordingReportsItsOwnRoom) {
    int reported = 0;
    recorder.onDiskRoom = [&](DiskRoom) { ++reported; };
    fileSystem.setCapacity(20'000'000);
    recorder.start(bothSources());
    EXPECT_EQ(errorOf([&] { recorder.stop(1, 1); }), Case::noAudioCaptured);
    recorder.start(bothSources());
    EXPECT_EQ(reported, 2);
}

TEST_F(AudioRecorderStart, writerThatCannotBeCreatedFailsWithThatErrorAndLeavesNothing) {
    toolkit.writing.creationError = platformError();
    EXPECT_EQ(textOf([&] { recorder.start(bothSources()); }), "the platform's own");
    EXPECT_TRUE(fileSystem.paths().empty());
    expectIdle();
}

TEST_F(AudioRecorderStart, temporaryFileIsThereBeforeAnythingIsCaptured) {
    std::size_t files = 0;
    capture.duringStart = [&] { files = temporaryFiles().size(); };
    recorder.start(bothSources());
    EXPECT_EQ(files, 1U);
    capture.duringStart = nullptr;
}

TEST_F(AudioRecorderStart, fileThatCannotBeCreatedFailsBeforeCaptureIsAskedFor) {
    toolkit.writing.creationError = platformError();
    EXPECT_EQ(textOf([&] { recorder.start(bothSources()); }), "the platform's own");
    EXPECT_FALSE(log.contains("makeStream com.vantoro.capture"));
}

TEST_F(AudioRecorderStart, refusedTrackFailsTheSetupAndLeavesNoFile) {
    toolkit.writing.refusedChannelCounts = {2};
    EXPECT_EQ(startError(bothSources()), Case::writerSetupFailed);
    toolkit.writing.refusedChannelCounts = {1};
    EXPECT_EQ(startError(bothSources()), Case::writerSetupFailed);
    EXPECT_TRUE(fileSystem.paths().empty());
    EXPECT_EQ(startError(systemAudioOnly()), std::nullopt);
}

TEST_F(AudioRecorderStart, streamThatCannotBeMadeFailsWithThatError) {
    capture.makeStreamError = platformError();
    EXPECT_EQ(textOf([&] { recorder.start(bothSources()); }), "the platform's own");
    EXPECT_TRUE(fileSystem.paths().empty());
    expectIdle();
}

TEST_F(AudioRecorderStart, captureThatCannotStartFailsWithThatErrorAndLeavesNoFile) {
    capture.startError = platformError();
    EXPECT_EQ(textOf([&] { recorder.start(bothSources()); }), "the platform's own");
    EXPECT_TRUE(temporaryFiles().empty());
    expectIdle();
}

TEST_F(AudioRecorderStart, failureAfterAudioWasWrittenKeepsTheTemporaryFile) {
    capture.startError = platformError();
    capture.duringStart = [this] { capture.deliver(bufferAt(0), AudioLevelSource::systemAudio); };
    EXPECT_EQ(textOf([&] { recorder.start(bothSources()); }), "the platform's own");
    EXPECT_EQ(temporaryFiles().size(), 1U);
    capture.duringStart = nullptr;
    expectIdle();
}

} // namespace
} // namespace vantoro::testing

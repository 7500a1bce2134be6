// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/control/view_model_fixture.h"

namespace vantoro::testing {
namespace {

using enum RecordingError::Case;
using Seen = std::vector<std::string>;

class StartTest : public ViewModelTest {
protected:
    StartTest() { launchAndSettle(); }
};

TEST_F(StartTest, handsTheRecorderTheChoicesOfTheMoment) {
    model->setCaptureSystemAudio(false);
    model->setSelectedMicrophoneID("headset");
    model->setTitle("Interview");
    model->startRecording();
    model->setCaptureSystemAudio(true);
    model->setCaptureMicrophone(false);
    model->setSelectedMicrophoneID("built-in");
    scheduler.settle();
    EXPECT_EQ(recorder.options,
              (std::vector<RecordingOptions>{{.captureSystemAudio = false,
                                              .captureMicrophone = true,
                                              .microphoneDeviceID = "headset",
                                              .outputDirectory = "/home/somebody/Movies/Vantoro",
                                              .title = "Interview"}}));
}

TEST_F(StartTest, marksAreNumberedInEachRecordingAndTitledByTheirNumbersIfByNothingElse) {
    EXPECT_EQ(model->mark("too early"), 0);
    record();
    EXPECT_EQ(model->mark(""), 1);
    EXPECT_EQ(model->mark("Answer"), 2);
    preferences.values[Preference::appLanguage] = "zh-Hans";
    EXPECT_EQ(model->mark(""), 3);
    model->toggleRecording();
    EXPECT_EQ(model->mark("too late"), 0);
    scheduler.settle();
    record();
    EXPECT_EQ(model->mark("Again"), 1);
    EXPECT_EQ(recorder.marks, (Seen{"Mark 1", "Answer", "标记 3", "Again"}));
}

TEST_F(StartTest, marksAreAsManyAsAFileCanHold) {
    record();
    for (int number = 1; number <= 255; ++number) {
        ASSERT_EQ(model->mark(""), number);
    }
    EXPECT_EQ(model->mark(""), 0);
    EXPECT_EQ(recorder.marks.size(), 255U);
}

TEST_F(StartTest, isAskedOfTheRecorderOnceHoweverOftenTheButtonIsPressed) {
    model->toggleRecording();
    model->toggleRecording();
    model->startRecording();
    EXPECT_EQ(scheduler.waitingTasks(), 1U);
    scheduler.settle();
    EXPECT_EQ(recorder.options.size(), 1U);
}

TEST_F(StartTest, isNotAskedOfTheRecorderWithoutASource) {
    model->setCaptureSystemAudio(false);
    model->setCaptureMicrophone(false);
    EXPECT_FALSE(model->canStart());
    model->toggleRecording();
    EXPECT_EQ(scheduler.waitingTasks(), 0U);
    EXPECT_EQ(model->statusText(), text(Key::ready));
}

TEST_F(StartTest, clearsTheLastRecordingAtOnceAndItsTimeOnSuccess) {
    record();
    scheduler.advance(std::chrono::seconds(5));
    power.sleep();
    scheduler.settle();
    ASSERT_EQ(message(), text(Key::sleepSaved));
    recorder.duringStart = [this] {
        EXPECT_EQ(message(), "(none)");
        EXPECT_EQ(lastRecording(), "(none)");
        EXPECT_EQ(values().elapsedSeconds, 5);
    };
    record();
    EXPECT_EQ(values().elapsedSeconds, 0);
}

TEST_F(StartTest, thatFailsLeavesTheTimeOfTheLastOne) {
    record();
    scheduler.advance(std::chrono::seconds(5));
    model->toggleRecording();
    scheduler.settle();
    recorder.startError = failure(noDisplayAvailable);
    model->startRecording();
    scheduler.settle();
    EXPECT_EQ(values().elapsedSeconds, 5);
}

TEST_F(StartTest, thatFailsIsDescribedInTheUsersLanguage) {
    recorder.startError = failure(screenPermissionDenied);
    model->startRecording();
    scheduler.settle();
    EXPECT_EQ(values().state, RecordingState::failed(text(Key::screenPermissionDenied)));
    EXPECT_EQ(message(), text(Key::screenPermissionDenied));

    preferences.values[Preference::appLanguage] = "zh-Hans";
    EXPECT_NE(message(), text(Key::screenPermissionDenied)); // as composed at that time
    model->startRecording();
    scheduler.settle();
    EXPECT_EQ(values().state, RecordingState::failed(text(Key::screenPermissionDenied)));
}

TEST_F(StartTest, thatFailsShowsThePermissionThatWasRefusedAndThenSalvages) {
    recorder.startError = failure(microphonePermissionDenied);
    recorder.duringStart = [this] { microphone.current = AuthorizationStatus::denied; };
    recorder.calls.clear();
    model->startRecording();
    scheduler.settle();
    EXPECT_EQ(values().microphonePermission, AuthorizationStatus::denied);
    EXPECT_EQ(recorder.calls, (Seen{"start", "salvage"}));
}

TEST_F(StartTest, thatSucceedsShowsThePermissionThatWasGranted) {
    microphone.current = AuthorizationStatus::notDetermined;
    refresh();
    recorder.duringStart = [this] { microphone.current = AuthorizationStatus::authorized; };
    record();
    EXPECT_EQ(values().microphonePermission, AuthorizationStatus::authorized);
}

TEST_F(StartTest, thatFailsAfterASleepForgetsTheSleep) {
    recorder.startError = failure("broken");
    model->startRecording();
    power.sleep();
    scheduler.settle();
    EXPECT_EQ(state(), Case::failed);
    EXPECT_FALSE(power.isHeldOff());
    recorder.startError = nullptr;
    record();
    EXPECT_EQ(message(), "(none)");
}

struct Pending {
    std::vector<char> events; // s: sleep, i: interruption
    Key message;
};

TEST_F(StartTest, isFollowedByTheStopThatIsPending) {
    for (const auto& [events, key] : {
             Pending{{'s'}, Key::sleepSaved},
             Pending{{'i'}, Key::captureInterruptedSaved},
             Pending{{'i', 's'}, Key::sleepSaved},
             Pending{{'s', 'i'}, Key::sleepSaved},
             Pending{{'i', 'i'}, Key::captureInterruptedSaved},
         }) {
        model->startRecording();
        for (const char event : events) {
            event == 's' ? power.sleep() : interruptCapture();
        }
        scheduler.runTask();
        EXPECT_EQ(state(), Case::processing);
        EXPECT_EQ(scheduler.timers(), 0U);
        scheduler.settle();
        EXPECT_EQ(state(), Case::completed);
        const auto cause = key == Key::captureInterruptedSaved ? " connection lost" : "";
        EXPECT_EQ(message(), text(key) + cause);
        EXPECT_EQ(values().elapsedSeconds, 0);
    }
}

class StopTest : public ViewModelTest {
protected:
    StopTest() { lead(Case::recording); }
};

TEST_F(StopTest, isAskedOfTheRecorderOnceHoweverOftenTheButtonIsPressed) {
    model->toggleRecording();
    model->toggleRecording();
    scheduler.runMain();
    model->toggleRecording();
    scheduler.settle();
    EXPECT_EQ(recorder.volumes.size(), 1U);
}

TEST_F(StopTest, usesTheCurrentVolumesUnclamped) {
    model->setSystemVolume(0.1);
    model->toggleRecording();
    model->setSystemVolume(-3.5);
    model->setMicrophoneVolume(1.7);
    scheduler.runMain();
    model->setSystemVolume(0.2);
    scheduler.settle();
    EXPECT_EQ(recorder.volumes, (std::vector<std::pair<float, float>>{{-3.5F, 1.7F}}));
}

TEST_F(StopTest, volumesAreExpectedFromTheStartAndWheneverTheyChange) {
    using Volumes = std::vector<std::pair<float, float>>;
    EXPECT_EQ(recorder.expectedVolumes, (Volumes{{0.9F, 1.0F}}));
    model->setSystemVolume(0.5);
    model->setMicrophoneVolume(0.25);
    EXPECT_EQ(recorder.expectedVolumes, (Volumes{{0.9F, 1.0F}, {0.5F, 1.0F}, {0.5F, 0.25F}}));
}

TEST_F(StopTest, usesTheDefaultVolumes) {
    model->toggleRecording();
    scheduler.settle();
    EXPECT_EQ(recorder.volumes, (std::vector<std::pair<float, float>>{{0.9F, 1.0F}}));
}

TEST_F(StopTest, keepsTheReasonThatItBeganWith) {
    model->toggleRecording();
    power.sleep();
    interruptCapture();
    scheduler.settle();
    EXPECT_EQ(state(), Case::completed);
    EXPECT_EQ(message(), "(none)");
}

TEST_F(StopTest, thatFailsSaysThatTheCheckpointWasKeptInTheUsersLanguage) {
    recorder.stopError = std::make_exception_ptr(RecordingError::writerFailed("disk full"));
    model->toggleRecording();
    preferences.values[Preference::appLanguage] = "zh-Hans";
    scheduler.settle();
    EXPECT_EQ(values().state, RecordingState::failed("录音失败：disk full"));
    EXPECT_EQ(message(), "录音失败：disk full 已保留可恢复的录音检查点。");
    EXPECT_EQ(model->statusText(), "需要处理");
}

TEST_F(StopTest, thatFailsWithNothingKeptDoesNotSayThatACheckpointWas) {
    recorder.stopError = failure(noAudioCaptured);
    recorder.keepsRecording = false;
    model->toggleRecording();
    scheduler.settle();
    EXPECT_EQ(message(), text(Key::noAudioCaptured));
}

TEST_F(StopTest, onANearlyFullDiskSavesAndSaysWhy) {
    reportRoom(RoomAdvice::end);
    EXPECT_EQ(state(), Case::processing);
    scheduler.settle();
    EXPECT_EQ(state(), Case::completed);
    EXPECT_EQ(message(), text(Key::diskNearlyFullSaved));
    EXPECT_EQ(recorder.volumes.size(), 1U);
}

TEST_F(StopTest, clearsTheDiskSpaceWarning) {
    reportRoom(RoomAdvice::tell, 7);
    EXPECT_NE(message(), "(none)");
    model->toggleRecording();
    EXPECT_EQ(message(), "(none)");
    scheduler.settle();
    EXPECT_EQ(state(), Case::completed);
    EXPECT_EQ(message(), "(none)");
}

TEST_F(StopTest, thatFailsIsFollowedByASalvageOfWhatWasKept) {
    recorder.stopError = failure(exportFailed);
    recorder.salvaged = {"/music/salvaged.m4a"};
    model->toggleRecording();
    scheduler.settle();
    EXPECT_EQ(state(), Case::completed);
    EXPECT_EQ(lastRecording(), "/music/salvaged.m4a");
    EXPECT_EQ(message(), "A previously interrupted recording was recovered and saved.");
}

TEST_F(StopTest, canBeFollowedByTheNextRecording) {
    model->toggleRecording();
    scheduler.settle();
    record();
    model->toggleRecording();
    scheduler.settle();
    EXPECT_EQ(recorder.calls, (Seen{"salvage", "start", "stop", "start", "stop"}));
}

TEST_F(StopTest, isDroppedIfTheViewModelIsGone) {
    model->toggleRecording();
    scheduler.runMain();
    model.reset();
    scheduler.settle();
    EXPECT_EQ(recorder.volumes.size(), 1U);
    EXPECT_FALSE(recorder.recorderLives);
}

TEST_F(StopTest, isNotBegunWhenTheViewModelIsGone) {
    model->toggleRecording();
    model.reset();
    scheduler.settle();
    EXPECT_EQ(recorder.volumes.size(), 0U);
}

TEST_F(ViewModelTest, beginsWithTheDefaults) {
    devices.list.clear();
    devices.systemDefault.reset();
    devices.mayCapture = false;
    microphone.current = AuthorizationStatus::notDetermined;
    launch();
    EXPECT_EQ(values().state, RecordingState());
    EXPECT_TRUE(values().captureSystemAudio);
    EXPECT_TRUE(values().captureMicrophone);
    EXPECT_EQ(values().selectedMicrophoneID, std::nullopt);
    EXPECT_EQ(values().systemVolume, 0.9);
    EXPECT_EQ(values().microphoneVolume, 1.0);
    EXPECT_EQ(values().systemAudioLevel, 0);
    EXPECT_EQ(values().microphoneLevel, 0);
    EXPECT_EQ(values().elapsedSeconds, 0);
    EXPECT_EQ(values().lastRecordingURL, std::nullopt);
    EXPECT_EQ(values().errorMessage, std::nullopt);
    EXPECT_TRUE(model->canStart());
    EXPECT_FALSE(model->isProcessing());
    EXPECT_EQ(model->formattedElapsedTime(), "00:00");
}

TEST_F(ViewModelTest, showsProgressWhilePreparingAndProcessingOnly) {
    for (const auto& [to, busy] :
         {std::pair{Case::idle, false}, std::pair{Case::preparing, true},
          std::pair{Case::recording, false}, std::pair{Case::processing, true},
          std::pair{Case::completed, false}, std::pair{Case::failed, false}}) {
        ViewModelWorld world;
        world.lead(to);
        EXPECT_EQ(world.model->isProcessing(), busy);
    }
}

TEST_F(ViewModelTest, showsTheStatusInTheLanguageOfTheMoment) {
    lead(Case::recording);
    EXPECT_EQ(model->statusText(), "Recording");
    preferences.values[Preference::appLanguage] = "zh-Hans";
    EXPECT_EQ(model->statusText(), "录音中");
}

} // namespace
} // namespace vantoro::testing

// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/control/view_model_fixture.h"

namespace vantoro::testing {
namespace {

using namespace std::chrono_literals;

TEST_F(ViewModelTest, savesWhatWasRecordedWhenTheMachineGoesToSleep) {
    lead(Case::recording);
    scheduler.advance(4s);
    power.sleep();
    EXPECT_EQ(state(), Case::processing);
    scheduler.advance(4s);
    scheduler.settle();
    EXPECT_EQ(state(), Case::completed);
    EXPECT_EQ(message(), text(Key::sleepSaved));
    EXPECT_EQ(lastRecording(), "/music/recorded.m4a");
    EXPECT_EQ(values().elapsedSeconds, 4);
}

TEST_F(ViewModelTest, savesWhatWasRecordedWhenCaptureBreaks) {
    lead(Case::recording);
    interruptCapture();
    EXPECT_EQ(state(), Case::processing);
    scheduler.settle();
    EXPECT_EQ(message(), text(Key::captureInterruptedSaved) + " connection lost");
}

TEST_F(ViewModelTest, saysOnceWhatBrokeCaptureAndTheSavingToo) {
    lead(Case::recording);
    recorder.stopError = failure("connection lost");
    interruptCapture();
    scheduler.settle();
    EXPECT_EQ(message(), "connection lost" + L10n(preferences).checkpointKept());
}

TEST_F(ViewModelTest, keepsTheReasonForWhichARecordingIsBeingSaved) {
    lead(Case::recording);
    power.sleep();
    interruptCapture();
    scheduler.settle();
    EXPECT_EQ(message(), text(Key::sleepSaved));
    EXPECT_EQ(recorder.volumes.size(), 1U);
}

TEST_F(ViewModelTest, hearsOfAnInterruptionOnTheMainThreadOnly) {
    lead(Case::recording);
    recorder.recorder->onCaptureInterrupted(failure("connection lost"));
    EXPECT_EQ(state(), Case::recording);
    scheduler.runMain();
    EXPECT_EQ(state(), Case::processing);
}

TEST_F(ViewModelTest, holdsOffSleepWhileThereIsSoundThatIsNotYetSafe) {
    for (const auto& [from, holds] : {
             std::pair{Case::idle, false},
             std::pair{Case::preparing, true},
             std::pair{Case::recording, true},
             std::pair{Case::processing, true},
             std::pair{Case::completed, false},
             std::pair{Case::failed, false},
         }) {
        ViewModelWorld world;
        world.lead(from);
        EXPECT_EQ(world.power.isHeldOff(), holds) << static_cast<int>(from);
        world.power.sleep();
        EXPECT_EQ(world.power.isHeldOff(), holds) << static_cast<int>(from);
        world.scheduler.settle();
        EXPECT_FALSE(world.power.isHeldOff()) << static_cast<int>(from);
    }
}

TEST_F(ViewModelTest, saysInTheUsersLanguageWhySleepIsHeldOff) {
    preferences = preferencesIn("zh-Hans");
    lead(Case::recording);
    EXPECT_EQ(power.reasons, std::vector<std::string>{text(Key::recording)});
}

TEST_F(ViewModelTest, letsTheMachineSleepBeforeTheFilesAreMixed) {
    lead(Case::processing);
    bool heldWhileNotSafe = false;
    bool heldWhileMixing = true;
    recorder.duringStop = [&] {
        heldWhileNotSafe = power.isHeldOff();
        recorder.recorder->onRecordingSafe();
        scheduler.runMain();
        heldWhileMixing = power.isHeldOff();
    };
    scheduler.runTask();
    EXPECT_TRUE(heldWhileNotSafe);
    EXPECT_FALSE(heldWhileMixing);
    EXPECT_EQ(state(), Case::completed);
}

TEST_F(ViewModelTest, holdsOffSleepNoLongerThanUntilSavingFailed) {
    lead(Case::recording);
    recorder.stopError = failure("disk full");
    power.sleep();
    scheduler.runMain();
    scheduler.runTask();
    EXPECT_EQ(state(), Case::failed);
    EXPECT_FALSE(power.isHeldOff());
}

TEST_F(ViewModelTest, looksAnewAtDevicesAndPermissionsOnWakeAndSalvagesUnlessBusy) {
    struct Row {
        Case state;
        std::size_t salvages;
    };

    for (const auto& [from, salvages] : {
             Row{Case::idle, 1},
             Row{Case::preparing, 0},
             Row{Case::recording, 0},
             Row{Case::processing, 0},
             Row{Case::completed, 1},
             Row{Case::failed, 1},
         }) {
        ViewModelWorld world;
        world.lead(from);
        world.recorder.foldersSought.clear();
        const auto waiting = world.scheduler.waitingTasks();
        world.devices.mayCapture = false;
        world.devices.list = {{"new", "New"}};
        world.power.wake();
        constexpr std::size_t surveys = 1;
        EXPECT_EQ(world.scheduler.waitingTasks(), waiting + surveys + salvages)
            << static_cast<int>(from);
        world.scheduler.settle();
        EXPECT_FALSE(world.values().hasScreenPermission);
        EXPECT_EQ(world.values().microphones, world.devices.list);
        EXPECT_EQ(world.recorder.foldersSought.size(), salvages) << static_cast<int>(from);
    }
}

TEST_F(ViewModelTest, followsThePowerStateForAsLongAsItLives) {
    launchAndSettle();
    EXPECT_TRUE(power.isObserved());
    model.reset();
    EXPECT_FALSE(power.isObserved());
    power.sleep();
    power.wake();
}

TEST_F(ViewModelTest, ignoresReportsAfterItsEnd) {
    lead(Case::recording);
    recorder.recorder->onCaptureInterrupted(failure("connection lost"));
    recorder.recorder->onAudioLevel(AudioLevelSource::microphone, 0.5F);
    model.reset();
    scheduler.settle();
    EXPECT_EQ(levels.microphoneLevel(), 0);
}

} // namespace
} // namespace vantoro::testing

// SPDX-License-Identifier: GPL-3.0-or-later

#include <gtest/gtest.h>

#include "tests/control/view_model_fixture.h"

namespace vantoro::testing {

namespace {

using Case = RecordingState::Case;

class LostSoundTest : public ViewModelTest {
protected:
    LostSoundTest() { lead(Case::recording); }

    void lose(const SoundLoss& loss) {
        recorder.recorder->onSoundLoss(loss);
        scheduler.runMain();
    }

    void standStill(AudioLevelSource source, double seconds) {
        lose({SoundLoss::Cause::notTakenInTime, SoundLoss::Duration(seconds), source, nullptr});
    }

    void loseAtTheEnd(double seconds) {
        recorder.duringStop = [this, seconds] {
            recorder.recorder->onSoundLoss({SoundLoss::Cause::notWritten,
                                            SoundLoss::Duration(seconds), std::nullopt,
                                            failure("No room")});
        };
    }
};

TEST_F(LostSoundTest, isReportedWithTheSavedRecording) {
    loseAtTheEnd(7.2);
    interruptCapture();
    scheduler.settle();
    EXPECT_EQ(state(), Case::completed);
    EXPECT_EQ(message(), "About 8 seconds of sound could not be written to the disk: No room. "
                         "Everything else was saved.");
    EXPECT_TRUE(model->isIncomplete());
}

TEST_F(LostSoundTest, isReportedWithAFailureAndAgainWithItsSalvage) {
    loseAtTheEnd(3);
    recorder.stopError = failure("broken");
    model->toggleRecording();
    recorder.salvaged = {"/music/only.m4a"};
    scheduler.settle();
    EXPECT_EQ(message(), "A previously interrupted recording was recovered and saved. About 3 "
                         "seconds of sound could not be written to the disk: No room.");
    EXPECT_TRUE(model->isIncomplete());
}

TEST_F(LostSoundTest, ofBothSourcesCountsOnceAndIsReportedAtOnceAndAtTheEnd) {
    standStill(AudioLevelSource::systemAudio, 2.5);
    standStill(AudioLevelSource::microphone, 2.4);
    standStill(AudioLevelSource::systemAudio, 1);
    const std::string told = "The computer did not keep up: 4 seconds of the recording are silent.";
    EXPECT_EQ(message(), told);
    model->toggleRecording();
    scheduler.settle();
    EXPECT_EQ(message(), told + " Everything else was saved.");
}

TEST_F(LostSoundTest, isClearedByTheNextRecording) {
    standStill(AudioLevelSource::systemAudio, 2);
    model->toggleRecording();
    scheduler.settle();
    record();
    EXPECT_FALSE(model->isIncomplete());
    EXPECT_EQ(message(), "(none)");
    model->toggleRecording();
    scheduler.settle();
    EXPECT_EQ(message(), "(none)");
}

TEST_F(LostSoundTest, isNotReportedWithALaterSalvage) {
    standStill(AudioLevelSource::systemAudio, 2);
    model->toggleRecording();
    scheduler.settle();
    recorder.salvaged = {"/music/other.m4a"};
    power.wake();
    scheduler.settle();
    EXPECT_EQ(message(), "A previously interrupted recording was recovered and saved.");
}

} // namespace

} // namespace vantoro::testing

// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/control/view_model_fixture.h"

namespace vantoro::testing {
namespace {

const TrackNames inEnglish{.systemAudio = "system audio", .microphone = "microphone"};
const std::string told = "The sources could not be saved separately: No room. A file with all of "
                         "them was kept: /music/a.incomplete.mov";

/// Recordings of which the tracks are to be kept.
class TracksTest : public ViewModelTest {
protected:
    TracksTest() { preferences.values[Preference::keepTracks] = "true"; }

    void failToKeepTheTracks() {
        recorder.duringStop = [this] {
            recorder.recorder->onTracksNotKept(
                {.original = "/music/a.incomplete.mov", .reason = failure("No room")});
        };
    }
};

TEST_F(TracksTest, areNamedForTheRecorderAndForEachSalvage) {
    launchAndSettle();
    record();
    EXPECT_EQ(recorder.options.at(0).trackNames, inEnglish);
    EXPECT_EQ(recorder.tracksSought.at(0), inEnglish);
}

TEST_F(TracksTest, areNotKeptUnlessWanted) {
    preferences.values.erase(Preference::keepTracks);
    launchAndSettle();
    record();
    EXPECT_EQ(recorder.options.at(0).trackNames, std::nullopt);
    EXPECT_EQ(recorder.tracksSought.at(0), std::nullopt);
}

TEST_F(TracksTest, thatCouldNotBeKeptAreReportedWithTheSavedRecording) {
    lead(Case::recording);
    failToKeepTheTracks();
    model->toggleRecording();
    scheduler.settle();
    EXPECT_EQ(state(), Case::completed);
    EXPECT_EQ(message(), told);
    EXPECT_TRUE(model->isIncomplete());
    recorder.duringStop = nullptr;
    record();
    EXPECT_FALSE(model->isIncomplete());
}

TEST_F(TracksTest, thatCouldNotBeKeptAreReportedBesideOtherMessages) {
    lead(Case::recording);
    failToKeepTheTracks();
    power.sleep();
    scheduler.settle();
    EXPECT_EQ(message(), text(Key::sleepSaved) + " " + told);
}

TEST_F(TracksTest, thatASalvageCouldNotKeepAreReported) {
    recorder.salvaged = {"/music/a.m4a"};
    recorder.tracksNotKept = {
        {.original = "/music/a.incomplete.mov", .reason = failure("No room")}};
    launchAndSettle();
    EXPECT_EQ(message(), "A previously interrupted recording was recovered and saved. " + told);
}

} // namespace
} // namespace vantoro::testing

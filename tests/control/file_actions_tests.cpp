// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/control/view_model_fixture.h"

namespace vantoro::testing {
namespace {

using Calls = std::vector<std::string>;

TEST_F(ViewModelTest, hasNoRecordingToShowBeforeThereIsOne) {
    for (const auto state : {Case::idle, Case::preparing, Case::recording, Case::failed}) {
        ViewModelWorld world;
        world.lead(state);
        world.model->playLastRecording();
        world.model->revealLastRecording();
        EXPECT_EQ(world.opener.calls, Calls{});
    }
}

TEST_F(ViewModelTest, playsAndRevealsTheLastRecording) {
    lead(Case::completed);
    model->playLastRecording();
    model->revealLastRecording();
    EXPECT_EQ(opener.calls, (Calls{"open /music/recorded.m4a", "reveal /music/recorded.m4a"}));
}

TEST_F(ViewModelTest, showsTheRecordingFolderInAnyState) {
    for (const auto state : {Case::idle, Case::recording, Case::completed}) {
        ViewModelWorld world;
        world.preferences.values[Preference::outputDirectory] = "/recordings";
        world.lead(state);
        world.model->revealOutputDirectory();
        EXPECT_EQ(world.opener.calls, Calls{"open folder /recordings"});
    }
}

TEST_F(ViewModelTest, opensTheSettingsOfEachPermission) {
    launchAndSettle();
    model->openMicrophoneSettings();
    model->openScreenCaptureSettings();
    EXPECT_EQ(opener.calls,
              (Calls{"settings Privacy_Microphone", "settings Privacy_ScreenCapture"}));
}

} // namespace
} // namespace vantoro::testing

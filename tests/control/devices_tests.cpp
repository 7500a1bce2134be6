// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/control/view_model_fixture.h"

namespace vantoro::testing {
namespace {

using Devices = std::vector<AudioInputDevice>;

TEST_F(ViewModelTest, knowsDevicesAndPermissionsFromTheBeginning) {
    microphone.current = AuthorizationStatus::restricted;
    model =
        std::make_unique<RecordingViewModel>(std::make_unique<FakeRecorder>(recorder), platform());
    EXPECT_FALSE(values().isSurveyed);
    scheduler.runTask();
    EXPECT_TRUE(values().isSurveyed);
    EXPECT_TRUE(values().hasScreenPermission);
    EXPECT_EQ(values().microphonePermission, AuthorizationStatus::restricted);
    EXPECT_EQ(values().microphones, devices.list);
    EXPECT_EQ(values().selectedMicrophoneID, "built-in");
}

TEST_F(ViewModelTest, listsMicrophonesInTheSystemsOrderWithoutLeavingAnyOut) {
    devices.list = {{"z", "Same"}, {"a", "Same"}, {"m", ""}};
    launch();
    EXPECT_EQ(values().microphones, (Devices{{"z", "Same"}, {"a", "Same"}, {"m", ""}}));
}

TEST_F(ViewModelTest, updatesDevicesAndPermissionsOnlyOnRefresh) {
    launch();
    devices.list = {{"new", "New"}};
    devices.systemDefault = "new";
    devices.mayCapture = false;
    microphone.current = AuthorizationStatus::denied;
    EXPECT_TRUE(values().hasScreenPermission);
    refresh();
    EXPECT_FALSE(values().hasScreenPermission);
    EXPECT_EQ(values().microphonePermission, AuthorizationStatus::denied);
    EXPECT_EQ(values().microphones, devices.list);
    EXPECT_EQ(values().selectedMicrophoneID, "new");
}

TEST_F(ViewModelTest, keepsTheSelectedMicrophoneWhileItIsThere) {
    launch();
    model->setSelectedMicrophoneID("headset");
    refresh();
    EXPECT_EQ(values().selectedMicrophoneID, "headset");
    devices.list.pop_back();
    refresh();
    EXPECT_EQ(values().selectedMicrophoneID, "built-in");
}

TEST_F(ViewModelTest, selectsNoMicrophoneWhenThereIsNone) {
    devices.list.clear();
    devices.systemDefault.reset();
    launchAndSettle();
    EXPECT_EQ(values().selectedMicrophoneID, std::nullopt);
    record();
    EXPECT_EQ(recorder.options.at(0).microphoneDeviceID, std::nullopt);
}

TEST_F(ViewModelTest, takesTheSystemsMicrophoneEvenIfItIsNotListed) {
    devices.systemDefault = "hidden";
    launch();
    EXPECT_EQ(values().selectedMicrophoneID, "hidden");
}

TEST_F(ViewModelTest, takesTheFirstMicrophoneWhereTheSystemHasNoDefault) {
    devices.systemDefault.reset();
    launch();
    EXPECT_EQ(values().selectedMicrophoneID, "built-in");
}

TEST_F(ViewModelTest, repeatsASurveyRequestedDuringASurvey) {
    launchAndSettle();
    model->refreshDevicesAndPermissions();
    EXPECT_EQ(scheduler.waitingTasks(), 1U);
    devices.meanwhile = [this] {
        model->refreshDevicesAndPermissions();
        model->refreshDevicesAndPermissions();
    };
    const int before = devices.readings;
    scheduler.settle();
    EXPECT_EQ(devices.readings, before + 2);
}

TEST_F(ViewModelTest, staysResponsiveWhileTheDesktopDoesNotAnswer) {
    launchAndSettle();
    model->refreshDevicesAndPermissions();
    model->startRecording();
    scheduler.runTask(1); // the start; the survey still waits
    EXPECT_EQ(state(), Case::recording);
}

TEST_F(ViewModelTest, hasNoPermissionAndNoMicrophoneIfTheSurveyFails) {
    launchAndSettle();
    EXPECT_TRUE(values().hasScreenPermission);
    devices.meanwhile = [] { throw std::runtime_error("the sound server is gone"); };
    refresh();
    EXPECT_FALSE(values().hasScreenPermission);
    EXPECT_TRUE(values().microphones.empty());
}

TEST_F(ViewModelTest, neverAsksForAPermissionByItself) {
    devices.mayCapture = false;
    microphone.current = AuthorizationStatus::notDetermined;
    lead(Case::recording);
    power.wake();
    refresh();
    EXPECT_FALSE(log.contains("microphone request"));
}

} // namespace
} // namespace vantoro::testing

// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/remote/control_interface.h"

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using desktop::ControlStatus;

const ControlStatus whole{.state = "recording",
                          .startedAt = 1,
                          .elapsedSeconds = 2,
                          .savingProgress = 0.25,
                          .systemAudio = {.isOn = false, .level = 0.5, .condition = "silent"},
                          .microphone = {.isOn = false, .level = 0.75, .condition = "muted"},
                          .microphoneID = "usb",
                          .folder = "file:///music",
                          .lastRecording = "file:///music/a.m4a",
                          .message = "a message"};

TEST(ControlInterfaceTest, propertiesHoldTheWholeStatus) {
    EXPECT_EQ(desktop::statusOf(desktop::propertiesOf(whole)), whole);
    EXPECT_EQ(desktop::statusOf(desktop::propertiesOf({})), ControlStatus());
}

TEST(ControlInterfaceTest, versionIsAmongTheProperties) {
    EXPECT_EQ(desktop::propertiesOf({}).at("Version"), desktop::BusValue(desktop::controlVersion));
}

TEST(ControlInterfaceTest, propertiesThatAreMissingUnknownOrOfAnotherTypeAreLeftOut) {
    EXPECT_EQ(desktop::statusOf({}), ControlStatus());
    auto properties = desktop::propertiesOf(whole);
    properties["Mood"] = true;
    properties["State"] = true;
    properties["ElapsedSeconds"] = 7.5;
    properties.erase("Microphone");
    auto expected = whole;
    expected.state = "idle";
    expected.elapsedSeconds = 0;
    expected.microphone.isOn = true;
    EXPECT_EQ(desktop::statusOf(properties), expected);
}

} // namespace
} // namespace vantoro::testing

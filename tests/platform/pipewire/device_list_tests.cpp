// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/device_list.h"

#include <csignal>
#include <cstdlib>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/pipewire/capture_access.h"
#include "tests/platform/pipewire/sound_session.h"

namespace vantoro::testing {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(DeviceList, listsTheMicrophonesAndTheDefaultOne) {
    pipewire::DeviceList list;
    EXPECT_THAT(list.microphones(),
                ElementsAre(AudioInputDevice{"vantoro-microphone", "Virtual Microphone"}));
    EXPECT_EQ(list.defaultMicrophone(), "vantoro-microphone");
    SoundSession::makeDevice("second-microphone", "Audio/Source/Virtual", "MONO");
    EXPECT_EQ(list.microphones().size(), 2U);
    EXPECT_TRUE(list.isVisible("second-microphone"));
    EXPECT_FALSE(list.isVisible("vantoro-output-1"));
}

TEST(DeviceList, knowsWhatCameAndWhatWent) {
    pipewire::DeviceList list;
    SoundSession::makeDevice("second-microphone", "Audio/Source/Virtual", "MONO");
    EXPECT_EQ(list.microphones().size(), 2U);
    SoundSession::destroyNode("second-microphone");
    EXPECT_THAT(list.microphones(),
                ElementsAre(AudioInputDevice{"vantoro-microphone", "Virtual Microphone"}));
    SoundSession::destroyNode("vantoro-microphone");
    EXPECT_THAT(list.microphones(), IsEmpty());
    EXPECT_EQ(list.defaultMicrophone(), std::nullopt);
}

TEST(DeviceList, followsTheDefault) {
    pipewire::DeviceList list;
    SoundSession::makeDevice("second-microphone", "Audio/Source/Virtual", "MONO");
    EXPECT_EQ(list.defaultMicrophone(), "vantoro-microphone");
    SoundSession::makeDefaultMicrophone("second-microphone");
    EXPECT_EQ(list.defaultMicrophone(), "second-microphone");
}

TEST(DeviceList, isThereAgainWhenTheSoundServerIs) {
    pipewire::DeviceList list;
    EXPECT_EQ(list.microphones().size(), 1U);
    SoundSession::signalServer(SIGKILL);
    EXPECT_THAT(list.microphones(), IsEmpty());
    const auto server = SoundSession::startServerAgain();
    EXPECT_THAT(list.microphones(),
                ElementsAre(AudioInputDevice{"vantoro-microphone", "Virtual Microphone"}));
}

TEST(DeviceList, isEmptyWithoutASoundServer) {
    ASSERT_EQ(setenv("PIPEWIRE_REMOTE", "no-such-server", 1), 0);
    pipewire::DeviceList list;
    EXPECT_THAT(list.microphones(), IsEmpty());
    EXPECT_EQ(list.defaultMicrophone(), std::nullopt);
}

TEST(CaptureAccess, isGrantedWhereTheSoundServerLetsUs) {
    pipewire::CaptureAccess access;
    EXPECT_TRUE(access.isGranted());
}

TEST(CaptureAccess, isRefusedWithoutASoundServer) {
    ASSERT_EQ(setenv("PIPEWIRE_REMOTE", "no-such-server", 1), 0);
    pipewire::CaptureAccess access;
    EXPECT_FALSE(access.isGranted());
}

TEST(CaptureAccess, isRefusedAfterTwoSecondsWithoutAnAnswer) {
    pipewire::CaptureAccess access;
    SoundSession::signalServer(SIGSTOP);
    const auto before = std::chrono::steady_clock::now();
    EXPECT_FALSE(access.isGranted());
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(15));
    SoundSession::signalServer(SIGCONT);
}

} // namespace

} // namespace vantoro::testing

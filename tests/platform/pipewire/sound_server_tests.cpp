// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/sound_server.h"

#include <chrono>
#include <csignal>
#include <cstdlib>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/pipewire/sound_session.h"

namespace vantoro::testing {

namespace {

using capture::MixerSetting;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A generous time limit: the tests are about the session's content, not a busy machine's speed.
constexpr std::chrono::seconds limit(30);

std::optional<capture::SoundSurvey> survey() {
    return pipewire::SoundServer(limit).survey();
}

/// The current mixer setting of the session's microphone.
MixerSetting mixer() {
    const auto found = survey();
    return found && found->microphones.size() == 1 ? found->microphones[0].mixer
                                                   : MixerSetting{true, true};
}

TEST(SoundServerSurvey, findsWhatTheSessionHas) {
    const auto found = survey();
    ASSERT_TRUE(found);
    EXPECT_EQ(found->serverVersion, pipewire::soundLibraryVersion());
    EXPECT_TRUE(found->mayCapture);
    EXPECT_TRUE(found->hasSessionManager);
    EXPECT_EQ(found->outputs, 2U);
    ASSERT_EQ(found->microphones.size(), 1U);
    EXPECT_EQ(found->microphones[0].device.name, "Virtual Microphone");
    EXPECT_TRUE(found->microphones[0].isDefault);
    EXPECT_EQ(found->microphones[0].mixer, MixerSetting());
}

TEST(SoundServerSurvey, findsAMicrophonesMixerSetting) {
    SoundSession::useMicrophone();
    ASSERT_EQ(run({"pactl", "set-source-mute", "vantoro-microphone", "1"}), 0);
    EXPECT_EQ(mixer(), (MixerSetting{.isMuted = true}));
    ASSERT_EQ(run({"pactl", "set-source-volume", "vantoro-microphone", "0%"}), 0);
    EXPECT_EQ(mixer(), (MixerSetting{.isMuted = true, .isVolumeZero = true}));
    ASSERT_EQ(run({"pactl", "set-source-mute", "vantoro-microphone", "0"}), 0);
    EXPECT_EQ(mixer(), (MixerSetting{.isVolumeZero = true}));
    ASSERT_EQ(run({"pactl", "set-source-volume", "vantoro-microphone", "40%"}), 0);
    EXPECT_EQ(mixer(), MixerSetting());
}

TEST(SoundServerSurvey, missesASessionManagerThatDidNotFollowItsServer) {
    SoundSession::signalServer(SIGKILL);
    EXPECT_EQ(survey(), std::nullopt);
    const auto server = SoundSession::startServerAgain();
    const auto found = survey();
    ASSERT_TRUE(found);
    EXPECT_FALSE(found->hasSessionManager);
    EXPECT_EQ(found->microphones.size(), 1U);
}

TEST(SoundServerSurvey, isNothingWithoutASoundServer) {
    ASSERT_EQ(setenv("PIPEWIRE_REMOTE", "no-such-server", 1), 0);
    EXPECT_EQ(survey(), std::nullopt);
}

TEST(SoundServerDevices, listsTheMicrophonesAndTheDefaultOne) {
    pipewire::SoundServer server;
    EXPECT_THAT(server.find().microphones,
                ElementsAre(AudioInputDevice{"vantoro-microphone", "Virtual Microphone"}));
    EXPECT_EQ(server.find().defaultMicrophone, "vantoro-microphone");
    SoundSession::makeDevice("second-microphone", "Audio/Source/Virtual", "MONO");
    EXPECT_EQ(server.find().microphones.size(), 2U);
}

TEST(SoundServerDevices, followsAddedAndRemovedDevices) {
    pipewire::SoundServer server;
    SoundSession::makeDevice("second-microphone", "Audio/Source/Virtual", "MONO");
    EXPECT_EQ(server.find().microphones.size(), 2U);
    SoundSession::destroyNode("second-microphone");
    EXPECT_THAT(server.find().microphones,
                ElementsAre(AudioInputDevice{"vantoro-microphone", "Virtual Microphone"}));
    SoundSession::destroyNode("vantoro-microphone");
    EXPECT_THAT(server.find().microphones, IsEmpty());
    EXPECT_EQ(server.find().defaultMicrophone, std::nullopt);
}

TEST(SoundServerDevices, followsTheDefault) {
    pipewire::SoundServer server;
    SoundSession::makeDevice("second-microphone", "Audio/Source/Virtual", "MONO");
    EXPECT_EQ(server.find().defaultMicrophone, "vantoro-microphone");
    SoundSession::makeDefaultMicrophone("second-microphone");
    EXPECT_EQ(server.find().defaultMicrophone, "second-microphone");
}

TEST(SoundServerDevices, isThereAgainWhenTheSoundServerIs) {
    pipewire::SoundServer server;
    EXPECT_EQ(server.find().microphones.size(), 1U);
    SoundSession::signalServer(SIGKILL);
    EXPECT_THAT(server.find().microphones, IsEmpty());
    const auto again = SoundSession::startServerAgain();
    EXPECT_THAT(server.find().microphones,
                ElementsAre(AudioInputDevice{"vantoro-microphone", "Virtual Microphone"}));
}

TEST(SoundServerDevices, isEmptyWithoutASoundServer) {
    ASSERT_EQ(setenv("PIPEWIRE_REMOTE", "no-such-server", 1), 0);
    pipewire::SoundServer server;
    EXPECT_THAT(server.find().microphones, IsEmpty());
    EXPECT_EQ(server.find().defaultMicrophone, std::nullopt);
}

TEST(SoundServerAccess, isGrantedWhereTheSoundServerLetsUs) {
    pipewire::SoundServer server;
    EXPECT_TRUE(server.isGranted());
    EXPECT_TRUE(server.find().mayCapture);
}

TEST(SoundServerAccess, isRefusedWithoutASoundServer) {
    ASSERT_EQ(setenv("PIPEWIRE_REMOTE", "no-such-server", 1), 0);
    pipewire::SoundServer server;
    EXPECT_FALSE(server.isGranted());
    EXPECT_FALSE(server.find().mayCapture);
}

TEST(SoundServerAccess, isRefusedAfterTwoSecondsWithoutAnAnswer) {
    pipewire::SoundServer server;
    SoundSession::signalServer(SIGSTOP);
    const auto before = std::chrono::steady_clock::now();
    EXPECT_FALSE(server.isGranted());
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(15));
    SoundSession::signalServer(SIGCONT);
}

} // namespace

} // namespace vantoro::testing

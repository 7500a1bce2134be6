// SPDX-License-Identifier: GPL-3.0-or-later

#include <chrono>
#include <csignal>
#include <cstdlib>

#include <gtest/gtest.h>

#include "platform/pipewire/graph_query.h"
#include "tests/platform/pipewire/sound_session.h"

namespace vantoro::testing {

namespace {

using capture::MixerSetting;

/// What is asked for is what the session has, not how fast a busy machine answers.
constexpr std::chrono::seconds limit(30);

/// The mixer of the session's microphone, as it is now.
MixerSetting mixer() {
    const auto survey = pipewire::surveySound(limit);
    return survey && survey->microphones.size() == 1 ? survey->microphones[0].mixer
                                                     : MixerSetting{true, true};
}

TEST(SoundSurveySession, findsWhatTheSessionHas) {
    const auto survey = pipewire::surveySound(limit);
    ASSERT_TRUE(survey);
    EXPECT_EQ(survey->serverVersion, pipewire::soundLibraryVersion());
    EXPECT_TRUE(survey->mayCapture);
    EXPECT_TRUE(survey->hasSessionManager);
    EXPECT_EQ(survey->outputs, 2U);
    ASSERT_EQ(survey->microphones.size(), 1U);
    EXPECT_EQ(survey->microphones[0].device.name, "Virtual Microphone");
    EXPECT_TRUE(survey->microphones[0].isDefault);
    EXPECT_EQ(survey->microphones[0].mixer, MixerSetting());
}

TEST(SoundSurveySession, knowsHowAMicrophoneStandsInTheMixer) {
    ASSERT_EQ(run({"pactl", "set-source-mute", "vantoro-microphone", "1"}), 0);
    EXPECT_EQ(mixer(), (MixerSetting{.isMuted = true}));
    ASSERT_EQ(run({"pactl", "set-source-volume", "vantoro-microphone", "0%"}), 0);
    EXPECT_EQ(mixer(), (MixerSetting{.isMuted = true, .isVolumeZero = true}));
    ASSERT_EQ(run({"pactl", "set-source-mute", "vantoro-microphone", "0"}), 0);
    EXPECT_EQ(mixer(), (MixerSetting{.isVolumeZero = true}));
    ASSERT_EQ(run({"pactl", "set-source-volume", "vantoro-microphone", "40%"}), 0);
    EXPECT_EQ(mixer(), MixerSetting());
}

TEST(SoundSurveySession, missesASessionManagerThatDidNotFollowItsServer) {
    SoundSession::signalServer(SIGKILL);
    EXPECT_EQ(pipewire::surveySound(limit), std::nullopt);
    const auto server = SoundSession::startServerAgain();
    const auto survey = pipewire::surveySound(limit);
    ASSERT_TRUE(survey);
    EXPECT_FALSE(survey->hasSessionManager);
    EXPECT_EQ(survey->microphones.size(), 1U);
}

TEST(SoundSurveySession, isNothingWithoutASoundServer) {
    ASSERT_EQ(setenv("PIPEWIRE_REMOTE", "no-such-server", 1), 0);
    EXPECT_EQ(pipewire::surveySound(limit), std::nullopt);
}

} // namespace

} // namespace vantoro::testing

// SPDX-License-Identifier: GPL-3.0-or-later

#include <gmock/gmock.h>

#include "tests/platform/pipewire/capture_fixture.h"
#include "tests/platform/pipewire/device_in_place.h"
#include "tests/platform/pipewire/own_tone.h"

namespace vantoro::testing {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The server reuses an object's id at once.
class Replacement : public Capture {};

TEST_F(Replacement, anOutputThatTakesTheMicrophonesIdIsNotRecordedAsTheMicrophone) {
    SoundSession::makeDevice("second-microphone", "Audio/Source/Virtual", "MONO");
    startWithMicrophone("second-microphone");
    ASSERT_TRUE(sound.waitForMore(0.5));
    const DeviceInPlace output("second-microphone", "new-output", "Audio/Sink", "MONO");
    ASSERT_TRUE(output.hasTakenTheId());
    const auto app = session.play("app", "new-output", 440, 1);
    ASSERT_TRUE(waitForStop());
    stop();
    EXPECT_THAT(sound.stops(), ElementsAre("The microphone was disconnected."));
    EXPECT_EQ(peakOf(sound.microphone().channels.at(0)), 0);
}

TEST_F(Replacement, anotherMicrophoneThatTakesItsIdIsNotRecordedInItsPlace) {
    SoundSession::makeDevice("second-microphone", "Audio/Source/Virtual", "MONO");
    startWithMicrophone("second-microphone");
    ASSERT_TRUE(sound.waitForMore(0.5));
    const DeviceInPlace other("second-microphone", "third-microphone", "Audio/Source/Virtual",
                              "MONO");
    ASSERT_TRUE(other.hasTakenTheId());
    ASSERT_TRUE(waitForStop());
    EXPECT_THAT(sound.stops(), ElementsAre("The microphone was disconnected."));
}

TEST_F(Replacement, anOutputThatTakesTheIdOfAnotherIsHeard) {
    SoundSession::makeDevice("late-output", "Audio/Sink", "FL,FR");
    const auto before = session.play("before", "late-output", 440);
    start(systemAudioOnly);
    ASSERT_TRUE(sound.waitForTone(AudioLevelSource::systemAudio, 440));
    const DeviceInPlace output("late-output", "new-output", "Audio/Sink", "FL,FR");
    ASSERT_TRUE(output.hasTakenTheId());
    const auto app = session.play("app", "new-output", 1000);
    ASSERT_TRUE(SoundSession::waitForLink("app:output_FL", "new-output:playback_FL"));
    ASSERT_TRUE(sound.waitForTone(AudioLevelSource::systemAudio, 1000));
    ASSERT_TRUE(sound.waitForMore(1.5));
    stop();
    EXPECT_NEAR(usualAmplitudeOf(1000, lastSecond(sound.audio().channels[0])), 0.25, 0.003);
    EXPECT_EQ(sound.audio().discontinuities, 0U);
    EXPECT_THAT(sound.stops(), IsEmpty());
}

TEST_F(Replacement, aStreamThatTakesTheIdOfAnotherIsHeard) {
    OwnTone tone(440);
    service = pipewire::PipeWireCapture({.excludesOwnSound = false});
    start(systemAudioOnly);
    ASSERT_TRUE(sound.waitForTone(AudioLevelSource::systemAudio, 440));
    const auto id = tone.node();
    tone.replace(1000);
    ASSERT_TRUE(sound.waitForTone(AudioLevelSource::systemAudio, 1000));
    EXPECT_EQ(tone.node(), id);
    EXPECT_THAT(sound.stops(), IsEmpty());
}

} // namespace

} // namespace vantoro::testing

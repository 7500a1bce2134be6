// SPDX-License-Identifier: GPL-3.0-or-later

#include <csignal>
#include <cstdlib>

#include <gmock/gmock.h>

#include "tests/platform/pipewire/capture_fixture.h"

namespace vantoro::testing {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(Capture, anUnknownMicrophoneIsAnError) {
    CaptureRequest request = bothSources;
    request.microphoneID = "no-such-microphone";
    EXPECT_EQ(startError(request), "The microphone \"no-such-microphone\" was not found.");
    request.microphoneID = "";
    EXPECT_EQ(startError(request), "The microphone \"\" was not found.");
    EXPECT_EQ(sound.audio().frames(), 0U);
    EXPECT_THAT(sound.stops(), IsEmpty());
}

TEST_F(Capture, anOutputIsNoMicrophone) {
    CaptureRequest request = microphoneOnly;
    request.microphoneID = "vantoro-output-1";
    EXPECT_EQ(startError(request), "The microphone \"vantoro-output-1\" was not found.");
}

TEST_F(Capture, withoutAnyMicrophoneTheDefaultOneIsAnError) {
    SoundSession::destroyNode("vantoro-microphone");
    EXPECT_EQ(startError(bothSources), "There is no default microphone.");
}

TEST_F(Capture, withoutASoundServerTheStartFails) {
    ASSERT_EQ(setenv("PIPEWIRE_REMOTE", "no-such-server", 1), 0);
    EXPECT_EQ(startError(systemAudioOnly), "The sound server cannot be reached.");
}

TEST_F(Capture, withASoundServerThatHangsTheStartFails) {
    SoundSession::signalServer(SIGSTOP);
    EXPECT_EQ(startError(systemAudioOnly), "The sound server does not respond.");
    SoundSession::signalServer(SIGCONT);
}

TEST_F(Capture, canBeStartedAgainAfterAStop) {
    start();
    ASSERT_TRUE(sound.waitForMore(0.3));
    stop();
    const std::size_t before = sound.audio().frames();
    start();
    ASSERT_TRUE(sound.waitForMore(0.3));
    EXPECT_GT(sound.audio().frames(), before);
}

TEST_F(Capture, stopsByItselfWhenTheMicrophoneGoes) {
    SoundSession::makeDevice("second-microphone", "Audio/Source/Virtual", "MONO");
    startWithMicrophone("second-microphone");
    ASSERT_TRUE(sound.waitForMore(0.5));
    SoundSession::destroyNode("second-microphone");
    ASSERT_TRUE(waitForStop());
    const std::size_t delivered = sound.audio().frames();
    EXPECT_GT(delivered, 24000U);
    EXPECT_EQ(sound.microphone().frames(), delivered);
    stop();
    EXPECT_EQ(sound.audio().frames(), delivered) << "delivers nothing more";
    EXPECT_THAT(sound.stops(), ElementsAre("The microphone was disconnected."));
}

TEST_F(Capture, anotherMicrophoneThatGoesChangesNothing) {
    SoundSession::makeDevice("second-microphone", "Audio/Source/Virtual", "MONO");
    start();
    SoundSession::destroyNode("second-microphone");
    ASSERT_TRUE(sound.waitForMore(1));
    EXPECT_THAT(sound.stops(), IsEmpty());
}

TEST_F(Capture, stopsByItselfWhenTheSoundServerDies) {
    const auto app = session.play("app", "vantoro-output-1", 440);
    start();
    ASSERT_TRUE(sound.waitForTone(AudioLevelSource::systemAudio, 440));
    ASSERT_TRUE(sound.waitForMore(1.2));
    SoundSession::signalServer(SIGKILL);
    ASSERT_TRUE(waitForStop());
    stop();
    EXPECT_THAT(sound.stops(), ElementsAre("The connection to the sound server was lost."));
    EXPECT_NEAR(usualAmplitudeOf(440, lastSecond(sound.audio().channels[0])), 0.25, 0.003);
    EXPECT_EQ(sound.audio().frames(), sound.microphone().frames());
}

TEST_F(Capture, stopsByItselfWhenTheSoundServerHangs) {
    start();
    ASSERT_TRUE(sound.waitForMore(0.3));
    SoundSession::signalServer(SIGSTOP);
    ASSERT_TRUE(waitForStop());
    EXPECT_THAT(sound.stops(), ElementsAre("The sound server does not respond."));
    stop();
    SoundSession::signalServer(SIGCONT);
}

TEST_F(Capture, canBeStoppedWhileTheSoundServerHangs) {
    start();
    ASSERT_TRUE(sound.waitForMore(0.3));
    SoundSession::signalServer(SIGSTOP);
    const auto before = std::chrono::steady_clock::now();
    stop();
    // Before the hanging server is given up, which would end the wait too.
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(8));
    SoundSession::signalServer(SIGCONT);
    EXPECT_THAT(sound.stops(), IsEmpty());
}

TEST_F(Capture, stopsByItselfWhenItsNodeIsDestroyed) {
    start();
    ASSERT_TRUE(sound.waitForMore(0.3));
    SoundSession::destroyNode("vantoro.microphone");
    ASSERT_TRUE(waitForStop());
    EXPECT_THAT(sound.stops(), ElementsAre(::testing::StartsWith("The sound server ended the")));
}

TEST_F(Capture, restoresLinksThatAnotherProgramRemoved) {
    const auto voice = session.speak("voice", 300);
    start();
    ASSERT_TRUE(sound.waitForTone(AudioLevelSource::microphone, 300));
    run({"pw-link", "-d", "vantoro-microphone:capture_MONO", "vantoro.microphone:input_MONO"});
    ASSERT_TRUE(sound.waitForMore(1.5));
    EXPECT_TRUE(sound.waitForTone(AudioLevelSource::microphone, 300));
    EXPECT_THAT(sound.stops(), IsEmpty());
}

TEST_F(Capture, canBeDestroyedOnTheQueueThatItDeliversOn) {
    start();
    ASSERT_TRUE(sound.waitForMore(0.3));
    queue.sync([this] { stream.reset(); });
    const std::size_t delivered = sound.audio().frames();
    queue.sync([] {});
    EXPECT_EQ(sound.audio().frames(), delivered);
}

} // namespace

} // namespace vantoro::testing

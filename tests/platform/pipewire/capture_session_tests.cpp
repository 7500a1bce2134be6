// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <cmath>
#include <future>
#include <numeric>

#include "capture/samples/frame_clock.h"
#include "tests/platform/pipewire/capture_fixture.h"
#include "tests/platform/pipewire/coded_sound.h"
#include "tests/platform/pipewire/own_tone.h"

namespace vantoro::testing {

namespace {

constexpr auto audio = AudioLevelSource::systemAudio;
constexpr auto microphone = AudioLevelSource::microphone;

/// Positions of single loud samples, in grid frames.
std::vector<std::int64_t> clicks(const DeliveredTrack& track) {
    std::vector<std::int64_t> result;
    const auto& samples = track.channels.at(0);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const std::int64_t position = track.start + static_cast<std::int64_t>(i);
        if (std::abs(samples[i]) > 0.2F && (result.empty() || position - result.back() > 4800)) {
            result.push_back(position);
        }
    }
    return result;
}

/// In how many tenths of a second, of the nine seconds from a frame on, a tone is interrupted. On a
/// busy machine the application may miss a cycle.
std::size_t gaps(double frequency, const DeliveredTrack& track, std::size_t from) {
    std::size_t count = 0;
    for (std::size_t tenth = 0; tenth < 90; ++tenth) {
        const auto part = std::span(track.channels[0]).subspan(from + (tenth * 4800), 4800);
        count += std::abs(amplitudeOf(frequency, part) - 0.25) < 0.01 ? 0U : 1U;
    }
    return count;
}

TEST_F(Capture, hearsApplicationsOnAllOutputsAndTheMicrophone) {
    const auto first = session.play("first-app", "vantoro-output-1", 440);
    const auto second = session.play("second-app", "vantoro-output-2", 1000);
    const auto voice = session.speak("voice", 300);
    start();
    ASSERT_TRUE(sound.waitForTone(audio, 440));
    ASSERT_TRUE(sound.waitForTone(audio, 1000));
    ASSERT_TRUE(sound.waitForTone(microphone, 300));
    ASSERT_TRUE(sound.waitForMore(1.5));
    stop();
    const auto heard = sound.audio();
    for (const auto& side : heard.channels) {
        EXPECT_NEAR(usualAmplitudeOf(440, lastSecond(side)), 0.25, 0.003);
        EXPECT_NEAR(usualAmplitudeOf(1000, lastSecond(side)), 0.25, 0.003);
        EXPECT_LT(steadyAmplitudeOf(300, lastSecond(side)), 0.001);
    }
    const auto spoken = sound.microphone();
    ASSERT_EQ(spoken.channels.size(), 1U);
    EXPECT_NEAR(usualAmplitudeOf(300, lastSecond(spoken.channels[0])), 0.25, 0.003);
    EXPECT_LT(steadyAmplitudeOf(440, lastSecond(spoken.channels[0])), 0.001);
    EXPECT_EQ(heard.discontinuities, 0U);
    EXPECT_EQ(spoken.discontinuities, 0U);
    EXPECT_EQ(heard.start, spoken.start);
    EXPECT_EQ(heard.frames(), spoken.frames());
    EXPECT_TRUE(sound.stops().empty());
}

TEST_F(Capture, waitsForAsMuchSoundAsIsToBeDeliveredAtATime) {
    service = pipewire::PipeWireCapture({.deliveryInterval = std::chrono::milliseconds(300)});
    start();
    ASSERT_TRUE(sound.waitForMore(1.5));
    EXPECT_GE(sound.largestDelay(), capture::framesInMilliseconds(250)); // without a last cycle
    EXPECT_EQ(sound.audio().discontinuities, 0U);
    EXPECT_EQ(sound.microphone().discontinuities, 0U);
}

TEST_F(Capture, reportsWhenTheMicrophoneIsMutedAndUnmuted) {
    using namespace std::chrono_literals;
    const auto mute = [](const char* on) {
        ASSERT_EQ(run({"pactl", "set-source-mute", "vantoro-microphone", on}), 0);
    };
    mute("1");
    start();
    EXPECT_TRUE(sound.waitUntil([&] { return sound.mutes() == std::vector{true}; }, 10s));
    mute("0");
    EXPECT_TRUE(sound.waitUntil([&] { return sound.mutes() == std::vector{true, false}; }, 10s));
    ASSERT_EQ(run({"pactl", "set-source-volume", "vantoro-microphone", "0%"}), 0);
    EXPECT_TRUE(sound.waitUntil([&] { return sound.mutes().size() == 3; }, 10s));
    ASSERT_EQ(run({"pactl", "set-source-volume", "vantoro-microphone", "50%"}), 0);
    EXPECT_TRUE(sound.waitUntil([&] { return sound.mutes().size() == 4; }, 10s));
    stop();
    EXPECT_EQ(sound.mutes(), (std::vector{true, false, true, false}));
}

TEST_F(Capture, reportsCodedSoundWhileItPlays) {
    using namespace std::chrono_literals;
    using enum SourceCondition;
    start();
    auto player = std::make_unique<CodedSound>();
    EXPECT_TRUE(
        sound.waitUntil([&] { return sound.systemObstacles() == std::vector{coded}; }, 10s));
    const auto other = session.play("app", "vantoro-output-1", 440);
    EXPECT_TRUE(sound.waitForTone(audio, 440)) << "other sound is still recorded";
    player.reset();
    EXPECT_TRUE(sound.waitUntil(
        [&] { return sound.systemObstacles() == std::vector{coded, delivering}; }, 10s));
    stop();
    EXPECT_TRUE(sound.stops().empty());
    EXPECT_TRUE(sound.mutes().empty());
}

TEST_F(Capture, hearsWhatIsLinkedToAnOutputByHand) {
    const auto speaker = session.speak("speaker", 300);
    start(systemAudioOnly);
    ASSERT_TRUE(
        SoundSession::link("vantoro-microphone:capture_MONO", "vantoro-output-2:playback_FL"));
    ASSERT_TRUE(sound.waitForTone(audio, 300));
    ASSERT_TRUE(sound.waitForMore(1.5));
    stop();
    const auto heard = sound.audio();
    EXPECT_NEAR(usualAmplitudeOf(300, lastSecond(heard.channels[0])), 0.25, 0.003);
    EXPECT_LT(steadyAmplitudeOf(300, lastSecond(heard.channels[1])), 0.0001)
        << "not played on the right";
}

TEST_F(Capture, hearsOnceWhatALoopbackPlaysAgainOnAnotherOutput) {
    ASSERT_EQ(run({"pactl", "load-module", "module-loopback", "source=vantoro-output-1.monitor",
                   "sink=vantoro-output-2", "sink_input_properties=node.name=repeater"}),
              0);
    ASSERT_TRUE(SoundSession::waitForLink("repeater:output_FL", "vantoro-output-2:playback_FL"));
    const auto app = session.play("app", "vantoro-output-1", 440);
    start(systemAudioOnly);
    ASSERT_TRUE(sound.waitForTone(audio, 440));
    ASSERT_TRUE(sound.waitForMore(1.5));
    stop();
    for (const auto& channel : sound.audio().channels) {
        EXPECT_NEAR(usualAmplitudeOf(440, lastSecond(channel)), 0.25, 0.003);
    }
}

TEST_F(Capture, leavesOutWhatOurOwnProcessPlays) {
    const OwnTone own(2500);
    const auto other = session.play("app", "vantoro-output-1", 440);
    start();
    ASSERT_TRUE(sound.waitForTone(audio, 440));
    ASSERT_TRUE(sound.waitForMore(1.5));
    stop();
    EXPECT_LT(steadyAmplitudeOf(2500, lastSecond(sound.audio().channels[0])), 0.0001);
}

TEST_F(Capture, hearsOurOwnProcessOnRequest) {
    const OwnTone own(2500);
    service = pipewire::PipeWireCapture({.excludesOwnSound = false});
    start(systemAudioOnly);
    EXPECT_TRUE(sound.waitForTone(audio, 2500));
}

TEST_F(Capture, leavesOutWhatIsMarkedAsOurOwn) {
    const auto own = session.play("own", "vantoro-output-1", 2500, 2, 0.25, "vantoro.own = true");
    const auto other = session.play("app", "vantoro-output-1", 440);
    start(systemAudioOnly);
    ASSERT_TRUE(sound.waitForTone(audio, 440));
    ASSERT_TRUE(sound.waitForMore(1.5));
    stop();
    EXPECT_LT(steadyAmplitudeOf(2500, lastSecond(sound.audio().channels[0])), 0.0001);
}

TEST_F(Capture, hearsAnApplicationForAsLongAsItPlays) {
    start(systemAudioOnly);
    auto app = session.play("app", "vantoro-output-2", 440);
    ASSERT_TRUE(sound.waitForTone(audio, 440));
    app.reset();
    ASSERT_TRUE(sound.waitForTone(audio, 440, false));
    app = session.play("app-again", "vantoro-output-1", 440);
    EXPECT_TRUE(sound.waitForTone(audio, 440));
    EXPECT_EQ(sound.audio().discontinuities, 0U);
}

TEST_F(Capture, losesNothingOfTheFirstSound) {
    start(systemAudioOnly);
    const auto app = session.play("app", "vantoro-output-1", 440);
    ASSERT_TRUE(sound.waitForTone(audio, 440));
    stop();
    // The tone starts with a rising sine; a truncated one would start elsewhere.
    const auto samples = sound.audio().channels[0];
    const auto begin = std::ranges::find_if(samples, [](float s) { return std::abs(s) > 0.001F; });
    ASSERT_LT(begin, samples.end() - 30);
    for (int i = 1; i < 25; ++i) {
        EXPECT_GT(begin[i], begin[i - 1]);
    }
    EXPECT_LT(*begin, 0.02F);
}

TEST_F(Capture, followsAnApplicationToAnotherOutput) {
    const auto app = session.play("app", "vantoro-output-1", 440);
    start(systemAudioOnly);
    ASSERT_TRUE(sound.waitForTone(audio, 440));
    SoundSession::move("app", "vantoro-output-2");
    ASSERT_TRUE(SoundSession::waitForLink("app:output_FL", "vantoro-output-2:playback_FL"));
    ASSERT_TRUE(sound.waitForMore(2));
    stop();
    EXPECT_NEAR(usualAmplitudeOf(440, lastSecond(sound.audio().channels[0])), 0.25, 0.003);
}

TEST_F(Capture, hearsOutputsThatComeAndGo) {
    start(systemAudioOnly);
    SoundSession::makeDevice("late-output", "Audio/Sink", "FL,FR");
    const auto app = session.play("app", "late-output", 440);
    ASSERT_TRUE(sound.waitForTone(audio, 440));
    SoundSession::destroyNode("late-output");
    ASSERT_TRUE(SoundSession::waitForLink("app:output_FL", "vantoro-output-1:playback_FL"));
    ASSERT_TRUE(sound.waitForMore(2));
    stop();
    EXPECT_NEAR(usualAmplitudeOf(440, lastSecond(sound.audio().channels[0])), 0.25, 0.003);
    EXPECT_EQ(sound.audio().discontinuities, 0U);
    EXPECT_TRUE(sound.stops().empty());
}

TEST_F(Capture, bringsAMonoApplicationToBothSidesAtFullLevel) {
    SoundSession::makeDevice("mono-output", "Audio/Sink", "MONO");
    const auto app = session.play("app", "mono-output", 440, 1);
    start(systemAudioOnly);
    ASSERT_TRUE(sound.waitForTone(audio, 440));
    ASSERT_TRUE(sound.waitForMore(1.5));
    stop();
    for (const auto& side : sound.audio().channels) {
        EXPECT_NEAR(usualAmplitudeOf(440, lastSecond(side)), 0.25, 0.003);
    }
}

TEST_F(Capture, foldsSurroundSoundToBothSides) {
    SoundSession::makeDevice("surround-output", "Audio/Sink", "FL,FR,FC,LFE,RL,RR");
    const auto app = session.play("app", "surround-output", 440, 6, 0.1);
    start(systemAudioOnly);
    ASSERT_TRUE(sound.waitForTone(audio, 440));
    ASSERT_TRUE(sound.waitForMore(1.5));
    stop();
    for (const auto& side : sound.audio().channels) {
        EXPECT_NEAR(usualAmplitudeOf(440, lastSecond(side)), 0.1 * (1 + 0.707 + 0.707), 0.003);
    }
}

TEST_F(Capture, leavesOutWhatTheServerMakesOfStereoForAnOutputOfManyChannels) {
    SoundSession::makeDevice("surround-output", "Audio/Sink", "FL,FR,FC,LFE,RL,RR,SL,SR");
    for (const int channels : {1, 2}) {
        const auto app = session.play("app", "surround-output", 440, channels, 0.1);
        start(systemAudioOnly);
        ASSERT_TRUE(sound.waitForTone(audio, 440));
        ASSERT_TRUE(sound.waitForMore(1.5));
        stop();
        for (const auto& side : sound.audio().channels) {
            EXPECT_NEAR(usualAmplitudeOf(440, lastSecond(side)), 0.1, 0.001) << channels;
        }
    }
}

TEST_F(Capture, hearsWhatPassesThroughAVirtualOutputOnce) {
    const ChildProcess loopback(
        {"pw-loopback", "--capture-props", "media.class=Audio/Sink node.name=virtual-output",
         "--playback-props", "node.name=virtual-playback target.object=vantoro-output-1"});
    ASSERT_TRUE(
        SoundSession::waitForLink("virtual-playback:output_FL", "vantoro-output-1:playback_FL"));
    const auto app = session.play("app", "virtual-output", 440);
    start(systemAudioOnly);
    ASSERT_TRUE(sound.waitForTone(audio, 440));
    ASSERT_TRUE(sound.waitForMore(1.5));
    stop();
    EXPECT_NEAR(usualAmplitudeOf(440, lastSecond(sound.audio().channels[0])), 0.25, 0.003);
}

TEST_F(Capture, soundWithoutAnOutputIsNotCaptured) {
    const auto voice = session.speak("voice", 300);
    start();
    ASSERT_TRUE(sound.waitForTone(microphone, 300));
    ASSERT_TRUE(sound.waitForMore(1.5));
    stop();
    EXPECT_EQ(peakOf(sound.audio().channels[0]), 0);
}

TEST_F(Capture, withNothingPlayingGivesSilenceInStepWithTheMicrophone) {
    start();
    ASSERT_TRUE(sound.waitForMore(2));
    stop();
    const auto heard = sound.audio();
    EXPECT_EQ(peakOf(heard.channels[0]), 0);
    EXPECT_EQ(heard.discontinuities, 0U);
    EXPECT_EQ(heard.start, sound.microphone().start);
    EXPECT_EQ(heard.frames(), sound.microphone().frames());
    EXPECT_LE(sound.largestLead(), 1024);
}

TEST_F(Capture, lastsAsLongAsItRan) {
    using Seconds = std::chrono::duration<double>;
    const auto now = [] { return std::chrono::steady_clock::now(); };
    const auto beforeStart = now();
    start();
    const auto afterStart = now();
    ASSERT_TRUE(sound.waitForMore(2));
    const auto beforeStop = now();
    stop();
    const auto afterStop = now();
    const double captured = static_cast<double>(sound.audio().frames()) / 48000;
    EXPECT_GE(captured, Seconds(beforeStop - afterStart).count() - 0.06);
    // The first piece comes from the cycle in which the streams were linked.
    constexpr double longCycle = 4096.0 / 48000;
    EXPECT_LE(captured, Seconds(afterStop - beforeStart).count() + longCycle + 0.06);
}

TEST_F(Capture, hasWhatWasHeardWhileItsStreamsSettled) {
    const auto app = session.play("app", "vantoro-output-1", 440);
    const auto voice = session.speak("voice", 300);
    start();
    const std::int64_t started = capture::gridPosition(capture::nanosecondsOn(CLOCK_MONOTONIC));
    ASSERT_TRUE(sound.waitForMore(1));
    stop();
    // Streams settle in four cycles of 85 ms.
    const auto settling = static_cast<std::size_t>(started - sound.audio().start);
    EXPECT_GT(settling, 9600U);
    for (const auto& [frequency, track] :
         {std::pair(440.0, sound.audio()), std::pair(300.0, sound.microphone())}) {
        const auto part = std::span(track.channels.at(0)).first(settling).last(4800);
        EXPECT_NEAR(amplitudeOf(frequency, part), 0.25, 0.01);
    }
}

TEST_F(Capture, clicksCoincideInOutputAndMicrophone) {
    const auto app = session.click("app");
    ASSERT_TRUE(SoundSession::link("app:output_FL", "vantoro-microphone:input_MONO"));
    start();
    ASSERT_TRUE(sound.waitForMore(4));
    stop();
    // Of eight clicks, the first and last may be missing from one source, and a busy machine may
    // delay one; out of step, none would coincide.
    const auto spoken = clicks(sound.microphone());
    const auto isSpoken = [&](std::int64_t position) {
        return std::ranges::any_of(spoken,
                                   [&](auto other) { return std::abs(position - other) < 960; });
    };
    EXPECT_GE(std::ranges::count_if(clicks(sound.audio()), isSpoken), 5);
}

TEST_F(Capture, losesNoFrameWhileTheQueueIsBlocked) {
    const auto app = session.play("app", "vantoro-output-1", 440);
    const auto voice = session.speak("voice", 300);
    start();
    ASSERT_TRUE(sound.waitForTone(audio, 440));
    ASSERT_TRUE(sound.waitForTone(microphone, 300));
    const std::size_t before = sound.audio().frames();
    // The stall itself: no event represents eight seconds of an idle queue.
    queue.async([] { std::this_thread::sleep_for(std::chrono::seconds(8)); });
    ASSERT_TRUE(sound.waitForMore(9));
    stop();
    const auto heard = sound.audio();
    const auto spoken = sound.microphone();
    // If the stall lost sound, or a smaller ring overflowed, most tenths would be affected.
    constexpr std::size_t aTenth = 9;
    EXPECT_LE(gaps(440, heard, before), aTenth);
    EXPECT_LE(gaps(300, spoken, before), aTenth);
    EXPECT_EQ(heard.discontinuities, 0U);
    EXPECT_LE(sound.largestLead(), 1024);
}

TEST_F(Capture, reportsTheLossOfAStallAndStaysInStep) {
    service = pipewire::PipeWireCapture({.longestStall = std::chrono::seconds(1)});
    const auto app = session.click("app");
    ASSERT_TRUE(SoundSession::link("app:output_FL", "vantoro-microphone:input_MONO"));
    start();
    ASSERT_TRUE(sound.waitForMore(2));
    const auto before = sound.audio().frames();
    {
        // A second recording, whose queue runs, shows how much sound reaches the stalled one.
        CapturedSound clockSound;
        SerialQueue clockQueue("com.vantoro.clock");
        const auto clock = service.makeStream(systemAudioOnly, clockQueue, clockSound);
        clock->startCapture();
        std::promise<void> release;
        queue.async([blocked = release.get_future().share()] { blocked.wait(); });
        EXPECT_TRUE(clockSound.waitForMore(4));
        release.set_value();
        clock->stopCapture();
    }
    ASSERT_TRUE(sound.waitForMore(6)); // including the stall's four seconds
    stop();
    const auto heard = sound.audio();
    const auto spoken = sound.microphone();
    for (const auto type : {audio, microphone}) {
        const auto losses = sound.losses(type);
        EXPECT_NEAR(std::accumulate(losses.begin(), losses.end(), 0.0), 3, 0.4);
    }
    EXPECT_EQ(heard.frames(), spoken.frames());
    EXPECT_EQ(heard.discontinuities, 0U);
    const auto atStart = clicks(heard).front();
    const auto later = clicks(heard).back();
    EXPECT_GT(later, heard.start + static_cast<std::int64_t>(before) + (4 * 48000));
    EXPECT_LT(std::abs((later - atStart + 12000) % 24000 - 12000), 960) << "half seconds";
    EXPECT_TRUE(std::ranges::any_of(
        clicks(spoken), [&](std::int64_t position) { return std::abs(position - later) < 960; }));
}

TEST_F(Capture, takesTheMeanOfTheInputsThatAreSpokenInto) {
    SoundSession::makeDevice("stereo-microphone", "Audio/Source/Virtual", "FL,FR");
    const auto voice = session.play("voice", "0", 300, 1);
    const auto other = session.play("other", "0", 500, 1);
    ASSERT_TRUE(SoundSession::link("voice:output_MONO", "stereo-microphone:input_FL"));
    ASSERT_TRUE(SoundSession::link("voice:output_MONO", "stereo-microphone:input_FR"));
    ASSERT_TRUE(SoundSession::link("other:output_MONO", "stereo-microphone:input_FR"));
    startWithMicrophone("stereo-microphone");
    ASSERT_TRUE(sound.waitForTone(microphone, 300));
    ASSERT_TRUE(sound.waitForMore(1.5));
    stop();
    const auto spoken = sound.microphone().channels[0];
    EXPECT_NEAR(usualAmplitudeOf(300, lastSecond(spoken)), 0.25, 0.003);
    EXPECT_NEAR(usualAmplitudeOf(500, lastSecond(spoken)), 0.125, 0.003);
}

TEST_F(Capture, hearsOneMicrophoneInOneOfManyInputsAtItsLevel) {
    SoundSession::makeDevice("interface", "Audio/Source/Virtual",
                             "AUX0,AUX1,AUX2,AUX3,AUX4,AUX5,AUX6,AUX7");
    const auto voice = session.play("voice", "0", 300, 1);
    ASSERT_TRUE(SoundSession::link("voice:output_MONO", "interface:input_AUX5"));
    startWithMicrophone("interface");
    ASSERT_TRUE(sound.waitForTone(microphone, 300));
    ASSERT_TRUE(sound.waitForMore(1.5));
    stop();
    EXPECT_NEAR(usualAmplitudeOf(300, lastSecond(sound.microphone().channels[0])), 0.25, 0.003);
}

TEST_F(Capture, hearsTheOneInputThatIsChosenAndNoOther) {
    SoundSession::makeDevice("interface", "Audio/Source/Virtual", "AUX0,AUX1,AUX2,AUX3");
    const auto voice = session.play("voice", "0", 300, 1);
    const auto other = session.play("other", "0", 500, 1);
    ASSERT_TRUE(SoundSession::link("voice:output_MONO", "interface:input_AUX2"));
    ASSERT_TRUE(SoundSession::link("other:output_MONO", "interface:input_AUX1"));
    startWithMicrophone("interface:AUX2");
    ASSERT_TRUE(sound.waitForTone(microphone, 300));
    ASSERT_TRUE(sound.waitForMore(1.5));
    stop();
    const auto spoken = sound.microphone().channels[0];
    EXPECT_NEAR(usualAmplitudeOf(300, lastSecond(spoken)), 0.25, 0.003);
    EXPECT_LT(steadyAmplitudeOf(500, lastSecond(spoken)), 0.0001);
}

TEST_F(Capture, deliversOneSourceAloneWhereOnlyOneIsWanted) {
    start(microphoneOnly);
    ASSERT_TRUE(sound.waitForMore(0.5));
    stop();
    EXPECT_EQ(sound.audio().frames(), 0U);
    EXPECT_GT(sound.microphone().frames(), 20000U);
}

} // namespace

} // namespace vantoro::testing

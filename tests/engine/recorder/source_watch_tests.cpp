// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/recorder/source_watch.h"

#include <array>
#include <cmath>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/fake_capture_service.h"

namespace vantoro::testing {
namespace {

using enum AudioLevelSource;
using enum SourceCondition;

class SourceWatchTest : public ::testing::Test {
protected:
    using Reports = std::vector<std::pair<AudioLevelSource, SourceCondition>>;

    SourceWatch watch;
    Reports reported;
    SourceConditionCallback collect = [this](AudioLevelSource source, SourceCondition condition) {
        reported.emplace_back(source, condition);
    };

    void hear(AudioLevelSource source, double seconds, float value) {
        constexpr std::size_t frames = 480;
        const auto buffer = bufferAt(0, 1, frames, value);
        for (std::int64_t left = std::llround(seconds * 100); left > 0; --left) {
            watch.observe(buffer, source, collect);
        }
    }
};

TEST_F(SourceWatchTest, tenSecondsOfZerosAreReportedOnceAndNotBefore) {
    hear(microphone, 9.99, 0);
    EXPECT_TRUE(reported.empty());
    hear(microphone, 0.01, 0);
    EXPECT_EQ(reported, (Reports{{microphone, silent}}));
    hear(microphone, 60, 0);
    EXPECT_EQ(reported.size(), 1U);
}

TEST_F(SourceWatchTest, theSmallestSoundEndsSilenceAndRestartsTheCount) {
    hear(systemAudio, 10, 0);
    hear(systemAudio, 0.01, 1e-30F);
    EXPECT_EQ(reported, (Reports{{systemAudio, silent}, {systemAudio, delivering}}));
    hear(systemAudio, 9.99, 0);
    EXPECT_EQ(reported.size(), 2U);
    hear(systemAudio, 0.01, 0);
    EXPECT_EQ(reported.size(), 3U);
}

TEST_F(SourceWatchTest, aSingleSampleThatIsNotZeroIsSound) {
    std::array<float, 480> samples{};
    samples.back() = -0.1F;
    auto buffer = bufferAt(0, 1, 480, 0);
    buffer.samples = samples;
    hear(microphone, 9.99, 0);
    watch.observe(buffer, microphone, collect);
    hear(microphone, 9.99, 0);
    EXPECT_TRUE(reported.empty());
}

TEST_F(SourceWatchTest, sourcesAreWatchedIndependently) {
    hear(systemAudio, 6, 0);
    hear(microphone, 6, 0);
    EXPECT_TRUE(reported.empty());
    hear(systemAudio, 4, 0);
    hear(microphone, 4, 0.5F);
    EXPECT_EQ(reported, (Reports{{systemAudio, silent}}));
}

TEST_F(SourceWatchTest, obstaclesAreReportedPerSource) {

    watch.setObstacle(AudioLevelSource::systemAudio, SourceCondition::coded, collect);
    watch.setObstacle(microphone, muted, collect);
    watch.setObstacle(AudioLevelSource::systemAudio, SourceCondition::delivering, collect);
    EXPECT_EQ(reported, (Reports{{AudioLevelSource::systemAudio, SourceCondition::coded},
                                 {microphone, muted},
                                 {AudioLevelSource::systemAudio, SourceCondition::delivering}}));
}

TEST_F(SourceWatchTest, mutedIsReportedAtOnceAndBeforeSilence) {
    watch.setObstacle(microphone, SourceCondition::muted, collect);
    watch.setObstacle(microphone, SourceCondition::muted, collect);
    hear(microphone, 20, 0);
    EXPECT_EQ(reported, (Reports{{microphone, muted}}));
    watch.setObstacle(microphone, SourceCondition::delivering, collect);
    EXPECT_EQ(reported, (Reports{{microphone, muted}, {microphone, silent}}));
    hear(microphone, 0.01, 0.5F);
    EXPECT_EQ(reported.back().second, delivering);
}

TEST_F(SourceWatchTest, bufferWithoutAFormatIsNoSilence) {
    auto buffer = bufferAt(0, 1, 4096, 0);
    buffer.format.reset();
    for (int i = 0; i < 1000; ++i) {
        watch.observe(buffer, microphone, collect);
    }
    EXPECT_TRUE(reported.empty());
}

TEST_F(SourceWatchTest, bufferWithoutASampleRateIsNoSilence) {
    auto buffer = bufferAt(0, 1, 4096, 0);
    buffer.format->sampleRate = 0;
    watch.observe(buffer, microphone, collect);
    EXPECT_TRUE(reported.empty());
}

TEST_F(SourceWatchTest, countsFrameByFrame) {
    for (const bool afterSound : {false, true}) {
        SourceWatch other;
        reported.clear();
        if (afterSound) {
            other.observe(bufferAt(0, 1, 480, 0.5F), microphone, collect);
        }
        auto buffer = bufferAt(0, 1, 9, 0);
        buffer.format->sampleRate = 1;
        other.observe(buffer, microphone, collect);
        EXPECT_TRUE(reported.empty());
        buffer = bufferAt(0, 1, 1, 0);
        buffer.format->sampleRate = 1;
        other.observe(buffer, microphone, collect);
        EXPECT_EQ(reported, (Reports{{microphone, silent}}));
    }
}

TEST_F(SourceWatchTest, unmutedMicrophoneIsNotReported) {
    watch.setObstacle(microphone, SourceCondition::delivering, collect);
    EXPECT_TRUE(reported.empty());
}

TEST_F(SourceWatchTest, resetForgetsReportsAndSilence) {
    hear(microphone, 10, 0);
    watch.setObstacle(microphone, SourceCondition::muted, collect);
    watch.reset();
    reported.clear();
    hear(microphone, 9.99, 0);
    EXPECT_TRUE(reported.empty());
    hear(microphone, 0.01, 0);
    EXPECT_EQ(reported, (Reports{{microphone, silent}}));
}

TEST_F(SourceWatchTest, nobodyNeedsToListen) {
    collect = nullptr;
    hear(microphone, 10, 0);
    watch.setObstacle(microphone, SourceCondition::muted, collect);
    EXPECT_TRUE(reported.empty());
}

} // namespace
} // namespace vantoro::testing

// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/recorder/level_meter.h"

#include <cmath>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/fake_capture_service.h"
#include "tests/support/fake_clock.h"

namespace vantoro::testing {
namespace {

using enum AudioLevelSource;

class LevelMeterTest : public ::testing::Test {
protected:
    FakeClock clock;
    LevelMeter meter{clock};
    std::vector<std::pair<AudioLevelSource, float>> published;
    AudioLevelCallback collect = [this](AudioLevelSource source, float level) {
        published.emplace_back(source, level);
    };

    void publish(AudioLevelSource source, double atUptime, float value = 1) {
        clock.uptime = atUptime;
        meter.publishAudioLevel(bufferAt(0, 2, 256, value), source, collect);
    }
};

TEST_F(LevelMeterTest, firstBufferOfEachSourceIsPublishedAtOnce) {
    publish(systemAudio, 1000);
    publish(microphone, 1000);
    EXPECT_EQ(published.size(), 2U);
}

TEST_F(LevelMeterTest, secondBufferWithinTheIntervalIsNotPublishedButTheOtherSourceIs) {
    publish(systemAudio, 1000);
    publish(microphone, 1000.025);
    publish(systemAudio, 1000.05);
    ASSERT_EQ(published.size(), 2U);
    EXPECT_EQ(published[1].first, microphone);
}

TEST_F(LevelMeterTest, atMostFifteenReadingsASecond) {
    for (int i = 0; i < 1000; ++i) {
        publish(systemAudio, 1000 + i / 1000.0);
    }
    EXPECT_EQ(published.size(), 15U);
}

TEST_F(LevelMeterTest, bufferAfterTheIntervalIsPublished) {
    publish(systemAudio, 1000);
    publish(systemAudio, 1000 + 1.0 / 15 + 1e-9);
    EXPECT_EQ(published.size(), 2U);
}

TEST_F(LevelMeterTest, intervalIsAFifteenthOfASecondToTheLastDigit) {
    publish(systemAudio, std::nextafter(1.0 / 15, 0));
    EXPECT_TRUE(published.empty());
    publish(systemAudio, 1.0 / 15);
    EXPECT_EQ(published.size(), 1U);
}

TEST_F(LevelMeterTest, levelIsThatOfTheOneBuffer) {
    publish(systemAudio, 1000, 1);
    publish(systemAudio, 1001, 0);
    ASSERT_EQ(published.size(), 2U);
    EXPECT_FLOAT_EQ(published[0].second, 1);
    EXPECT_FLOAT_EQ(published[1].second, 0);
}

TEST_F(LevelMeterTest, bufferThatCannotBeMeasuredPublishesZeroAndCountsForTheInterval) {
    auto refused = bufferAt(0);
    refused.format->channelsPerFrame = 5;
    meter.publishAudioLevel(refused, systemAudio, collect);
    publish(systemAudio, clock.uptime + 0.05);
    ASSERT_EQ(published.size(), 1U);
    EXPECT_EQ(published[0].second, 0.0F);
}

TEST_F(LevelMeterTest, intervalRunsEvenWithoutACallback) {
    meter.publishAudioLevel(bufferAt(0), systemAudio, nullptr);
    publish(systemAudio, clock.uptime + 0.05);
    EXPECT_TRUE(published.empty());
}

TEST_F(LevelMeterTest, resetMakesTheNextBufferEligible) {
    publish(systemAudio, 1000);
    meter.reset();
    publish(systemAudio, 1000.01);
    EXPECT_EQ(published.size(), 2U);
}

TEST_F(LevelMeterTest, nothingIsPublishedInTheFirstFifteenthOfASecondOfUptime) {
    publish(systemAudio, 0.05);
    EXPECT_TRUE(published.empty());
    publish(systemAudio, 0.07);
    EXPECT_EQ(published.size(), 1U);
}

} // namespace
} // namespace vantoro::testing

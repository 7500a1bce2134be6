// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/recorder/level_meter.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

SampleBuffer bufferOf(const std::vector<float>& samples, std::uint32_t channels) {
    return {.dataIsReady = true,
            .frameCount = static_cast<std::int64_t>(samples.size() / channels),
            .presentationTime = {0, 48000},
            .format = AudioStreamDescription{.sampleRate = 48000, .channelsPerFrame = channels},
            .samples = samples};
}

float levelOfConstant(float value) {
    const std::vector<float> samples(1024, value);
    return audioLevel(bufferOf(samples, 1));
}

std::vector<float> sine(float amplitude) {
    std::vector<float> samples(4800);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] =
            amplitude * std::sin(2 * std::numbers::pi_v<float> * static_cast<float>(i % 48) / 48);
    }
    return samples;
}

TEST(AudioLevel, fullScaleSquareWaveReadsOne) {
    std::vector<float> samples(1024);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = i % 2 == 0 ? 1.0F : -1.0F;
    }
    EXPECT_FLOAT_EQ(audioLevel(bufferOf(samples, 2)), 1.0F);
}

TEST(AudioLevel, fullScaleSineReadsThreeDecibelsBelowOne) {
    // 20 log10(1 / sqrt 2) = -3.0103 dBFS; (45 - 3.0103) / 45
    EXPECT_NEAR(audioLevel(bufferOf(sine(1), 1)), 0.933104F, 1e-5F);
}

TEST(AudioLevel, digitalSilenceReadsZero) {
    EXPECT_EQ(levelOfConstant(0), 0.0F);
}

TEST(AudioLevel, louderThanFullScaleReadsOne) {
    EXPECT_EQ(levelOfConstant(4), 1.0F);
}

TEST(AudioLevel, decibelsMapLinearlyFromMinusFortyFiveToZero) {
    EXPECT_NEAR(levelOfConstant(std::pow(10.0F, -22.5F / 20)), 0.5F, 1e-5F);
    EXPECT_NEAR(levelOfConstant(std::pow(10.0F, -9.0F / 20)), 0.8F, 1e-5F);
    EXPECT_NEAR(levelOfConstant(0.5F), (45 - 6.0206F) / 45, 1e-5F);
}

TEST(AudioLevel, minusFortyFiveDecibelsReadsZeroAndJustAboveReadsMore) {
    EXPECT_NEAR(levelOfConstant(std::pow(10.0F, -45.0F / 20)), 0.0F, 1e-6F);
    EXPECT_EQ(levelOfConstant(std::pow(10.0F, -45.01F / 20)), 0.0F);
    const float above = levelOfConstant(std::pow(10.0F, -44.9F / 20));
    EXPECT_GT(above, 0.0F);
    EXPECT_NEAR(above, 0.1F / 45, 1e-4F);
}

TEST(AudioLevel, allChannelsCount) {
    std::vector<float> samples(2048, 0.0F);
    std::fill_n(samples.begin(), 1024, 1.0F); // one channel full, one silent: -3.01 dBFS
    EXPECT_NEAR(audioLevel(bufferOf(samples, 2)), 0.933104F, 1e-5F);
}

TEST(AudioLevel, sumsInSinglePrecisionInTheOrderOfTheSamples) {
    // After 2^19 full-scale samples, squares of 1/8 vanish in the rounding of the sum.
    std::vector<float> samples(1U << 20U, 0.125F);
    std::fill_n(samples.begin(), 1U << 19U, 1.0F);
    EXPECT_NEAR(audioLevel(bufferOf(samples, 1)), 0.933104F, 1e-5F);
    std::ranges::reverse(samples);
    EXPECT_NEAR(audioLevel(bufferOf(samples, 1)), 0.934600F, 1e-5F);
}

TEST(AudioLevel, oneFrameAtOneHertzIsEnough) {
    const std::vector<float> loud(2, 1.0F);
    auto buffer = bufferOf(loud, 2);
    buffer.format->sampleRate = 1;
    EXPECT_FLOAT_EQ(audioLevel(buffer), 1.0F);
}

TEST(AudioLevel, whatCannotBeMeasuredReadsZero) {
    const std::vector<float> loud(64, 1.0F);
    auto buffer = bufferOf(loud, 2);
    buffer.format.reset();
    EXPECT_EQ(audioLevel(buffer), 0.0F) << "no format";

    buffer = bufferOf(loud, 2);
    buffer.format->channelsPerFrame = 3;
    EXPECT_EQ(audioLevel(buffer), 0.0F) << "samples do not fit the format";

    buffer = bufferOf(loud, 2);
    buffer.format->sampleRate = 0;
    EXPECT_EQ(audioLevel(buffer), 0.0F) << "no sample rate";

    buffer = bufferOf(loud, 2);
    buffer.frameCount = 0;
    EXPECT_EQ(audioLevel(buffer), 0.0F) << "no frames";

    buffer = bufferOf(std::vector<float>{}, 2);
    EXPECT_EQ(audioLevel(buffer), 0.0F) << "no samples";

    buffer = bufferOf(loud, 2);
    buffer.format->channelsPerFrame = 0;
    EXPECT_EQ(audioLevel(buffer), 0.0F) << "no channels";
}

} // namespace
} // namespace vantoro::testing

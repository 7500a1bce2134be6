// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/writing/track_encoder.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <span>

namespace vantoro::testing {
namespace {

using namespace media;

SampleBuffer bufferOf(std::span<const float> samples, std::int64_t frames, std::uint32_t channels) {
    return {.dataIsReady = true,
            .frameCount = frames,
            .presentationTime = zeroTime,
            .format = AudioStreamDescription{.sampleRate = 48000, .channelsPerFrame = channels},
            .samples = samples};
}

TEST(SampleConversion, nonFiniteSamplesBecomeSilence) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const std::array<float, 5> samples{0.5F, std::numeric_limits<float>::quiet_NaN(), infinity,
                                       -infinity, 2.5F};
    std::array<float, 5> converted{};
    copySamples(bufferOf(samples, 5, 1), 0, 0, converted);
    EXPECT_EQ(converted, (std::array{0.5F, 0.0F, 0.0F, 0.0F, 2.5F}));
}

TEST(SampleConversion, copiesOneChannel) {
    const std::array<float, 6> samples{1, 2, 3, 4, 5, 6};
    std::array<float, 2> converted{};
    copySamples(bufferOf(samples, 3, 2), 1, 1, converted);
    EXPECT_EQ(converted, (std::array{5.0F, 6.0F}));
}

TEST(SampleConversion, onlyConsistentBuffersFitATrack) {
    const std::array<float, 6> six{};
    EXPECT_TRUE(fitsTrack(bufferOf(six, 3, 2), 2));
    EXPECT_FALSE(fitsTrack(bufferOf(six, 3, 2), 1));
    EXPECT_FALSE(fitsTrack(bufferOf(six, 2, 2), 2));
    EXPECT_FALSE(fitsTrack(bufferOf(six, -3, 2), 2));
    auto withoutFormat = bufferOf(six, 3, 2);
    withoutFormat.format.reset();
    EXPECT_FALSE(fitsTrack(withoutFormat, 2));
    auto otherRate = bufferOf(six, 3, 2);
    otherRate.format->sampleRate = 44100;
    EXPECT_FALSE(fitsTrack(otherRate, 2));
}

} // namespace
} // namespace vantoro::testing

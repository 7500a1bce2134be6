// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/audio_level.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace vantoro {

namespace {

constexpr float quietest = -45.0F; // dBFS
constexpr float smallestRms = 1e-06F;

float unitValue(float sample) noexcept {
    return sample;
}

float unitValue(std::int16_t sample) noexcept {
    return static_cast<float>(sample) / 32767.0F;
}

float unitValue(std::int32_t sample) noexcept {
    return static_cast<float>(sample) * 0x1p-31F;
}

/// In single precision and in the order of the samples, so that a reading is the same everywhere.
template <class Sample>
float sumOfSquares(std::span<const Sample> samples) noexcept {
    float sum = 0;
    for (const Sample sample : samples) {
        const float value = unitValue(sample);
        sum += value * value;
    }
    return sum;
}

float levelOfMeanSquare(float meanSquare) noexcept {
    float rms = std::sqrt(meanSquare);
    if (!(rms > smallestRms)) {
        rms = smallestRms;
    }
    const float decibels = 20.0F * std::log10(rms);
    if (!(decibels > quietest)) {
        return 0;
    }
    return std::clamp((decibels - quietest) / -quietest, 0.0F, 1.0F);
}

} // namespace

float audioLevel(const SampleBuffer& buffer) noexcept {
    if (!buffer.format || !(buffer.format->sampleRate > 0) || buffer.frameCount < 1) {
        return 0;
    }
    const auto expected =
        static_cast<std::uint64_t>(buffer.frameCount) * buffer.format->channelsPerFrame;
    return std::visit(
        [expected](auto samples) -> float {
            if (samples.size() != expected || samples.empty()) {
                return 0;
            }
            return levelOfMeanSquare(sumOfSquares(samples) / static_cast<float>(samples.size()));
        },
        buffer.samples);
}

} // namespace vantoro

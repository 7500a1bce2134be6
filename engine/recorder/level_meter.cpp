// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/recorder/level_meter.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <span>

namespace vantoro {

namespace {

constexpr double publishInterval = 1.0 / 15; // seconds
constexpr float quietest = -45.0F;           // dBFS
constexpr float smallestRms = 1e-06F;

/// Single precision, in sample order, so that readings are identical everywhere.
float sumOfSquares(std::span<const float> samples) noexcept {
    float sum = 0;
    for (const float sample : samples) {
        sum += sample * sample;
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
    const auto samples = buffer.samples;
    if (samples.size() != expected || samples.empty()) {
        return 0;
    }
    return levelOfMeanSquare(sumOfSquares(samples) / static_cast<float>(samples.size()));
}

void LevelMeter::publishAudioLevel(const SampleBuffer& buffer, AudioLevelSource source,
                                   const AudioLevelCallback& callback) {
    double& last = lastLevelPublishTime_.at(static_cast<std::size_t>(source));
    const double now = clock_.systemUptime();
    if (now - last < publishInterval) {
        return;
    }
    last = now;
    if (callback) {
        callback(source, audioLevel(buffer));
    }
}

} // namespace vantoro

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

/// Single precision, in sample order, so that readings are identical everywhere.
float sumOfSquares(std::span<const float> samples) noexcept {
    float sum = 0;
    for (const float sample : samples) {
        sum += sample * sample;
    }
    return sum;
}

} // namespace

float audioLevel(const SampleBuffer& buffer) noexcept {
    if (!buffer.format || !(buffer.format->sampleRate > 0)) {
        return 0;
    }
    const auto samples = buffer.samples;
    const auto expected =
        static_cast<std::uint64_t>(buffer.frameCount) * buffer.format->channelsPerFrame;
    if (samples.size() != expected || samples.empty()) {
        return 0;
    }
    const float meanSquare = sumOfSquares(samples) / static_cast<float>(samples.size());
    const float decibels = 20.0F * std::log10(std::sqrt(meanSquare));
    // False for silence (minus infinity) and for samples that are no numbers, too.
    return decibels > quietest ? std::min((decibels - quietest) / -quietest, 1.0F) : 0;
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

// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/crash/support/heard_tones.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace vantoro::testing {

namespace {

constexpr std::int64_t framesPerSecond = 48000;

} // namespace

void HeardTones::until(std::int64_t frames) {
    constexpr std::int64_t bufferFrames = 960;
    while (heard_ < frames) {
        const std::int64_t count = std::min(bufferFrames, frames - heard_);
        hear(AudioLevelSource::systemAudio, 2, count, systemTone);
        hear(AudioLevelSource::microphone, 1, count, microphoneTone);
        heard_ += count;
    }
}

double HeardTones::systemTone(std::int64_t second) {
    return 300.0 + 50.0 * static_cast<double>(second % 20);
}

double HeardTones::microphoneTone(std::int64_t second) {
    return 2000.0 + 50.0 * static_cast<double>(second % 20);
}

void HeardTones::hear(AudioLevelSource source, std::uint32_t channels, std::int64_t frames,
                      double (*toneOf)(std::int64_t)) {
    std::vector<float> channel;
    for (std::int64_t frame = heard_; frame < heard_ + frames; ++frame) {
        const double phase = 2 * std::numbers::pi * toneOf(frame / framesPerSecond) *
                             static_cast<double>(frame) / framesPerSecond;
        channel.push_back(amplitude * static_cast<float>(std::sin(phase)));
    }
    std::vector<float> samples; // planar
    for (std::uint32_t index = 0; index < channels; ++index) {
        samples.insert(samples.end(), channel.begin(), channel.end());
    }
    capture_.deliver({.dataIsReady = true,
                      .frameCount = frames,
                      .presentationTime = {heard_, framesPerSecond},
                      .format = AudioStreamDescription{.sampleRate = framesPerSecond,
                                                       .channelsPerFrame = channels},
                      .samples = samples},
                     source);
}

} // namespace vantoro::testing

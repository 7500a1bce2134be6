// SPDX-License-Identifier: GPL-3.0-or-later

#include <array>
#include <cmath>
#include <numbers>

#include <benchmark/benchmark.h>

#include "engine/recorder/level_meter.h"

namespace {

constexpr std::size_t frames = 1024;
constexpr std::size_t channels = 2;

/// The capture queue's cost of one meter reading.
void levelOfOneStereoBuffer(benchmark::State& state) {
    std::array<float, frames * channels> samples{};
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples.at(i) = 0.5F * std::sin(static_cast<float>(i) * std::numbers::pi_v<float> / 48);
    }
    const vantoro::SampleBuffer buffer{
        .dataIsReady = true,
        .frameCount = frames,
        .presentationTime = {0, 48000},
        .format =
            vantoro::AudioStreamDescription{.sampleRate = 48000, .channelsPerFrame = channels},
        .samples = samples};
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(vantoro::audioLevel(buffer));
    }
}

BENCHMARK(levelOfOneStereoBuffer);

} // namespace

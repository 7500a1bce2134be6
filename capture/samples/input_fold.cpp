// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/samples/input_fold.h"

#include <algorithm>
#include <cmath>

namespace vantoro::capture {

namespace {

constexpr float quietest = 1e-3F;
constexpr float quietestOfLoudest = 1e-2F;

/// Ignores non-finite samples.
float peakOf(std::span<const float> samples) noexcept {
    float peak = 0;
    for (const float sample : samples) {
        peak = std::isfinite(sample) ? std::max(peak, std::abs(sample)) : peak;
    }
    return peak;
}

} // namespace

void InputFold::fold(std::span<const std::span<const float>> inputs,
                     std::span<float> mono) noexcept {
    const bool isFirst = heard_ == 0;
    listen(inputs, mono.size());
    const float target = 1.0F / static_cast<float>(std::max<std::size_t>(heard_, 1));
    // The first input heard has the right level from its first sample.
    const float start = isFirst ? target : gain_;
    const float step = (target - start) / static_cast<float>(mono.size());
    std::ranges::fill(mono, 0.0F);
    for (const std::span<const float> input : inputs) {
        std::ranges::transform(
            mono, input.first(mono.size()), mono.begin(),
            [](float sum, float sample) { return sum + (std::isfinite(sample) ? sample : 0.0F); });
    }
    for (std::size_t frame = 0; frame < mono.size(); ++frame) {
        mono[frame] *= start + (step * static_cast<float>(frame));
    }
    gain_ = target;
}

void InputFold::listen(std::span<const std::span<const float>> inputs,
                       std::size_t frames) noexcept {
    if (heard_ == inputs.size()) {
        return; // all heard already
    }
    std::array<float, maximumInputs> peaks{};
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        peaks.at(i) = peakOf(inputs[i].first(frames));
        loudest_ = std::max(loudest_, peaks.at(i));
    }
    const float least = std::max(quietest, quietestOfLoudest * loudest_);
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        isHeard_.at(i) = isHeard_.at(i) || peaks.at(i) >= least;
    }
    heard_ = static_cast<std::size_t>(std::ranges::count(isHeard_, true));
}

} // namespace vantoro::capture

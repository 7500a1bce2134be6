// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/media/support/test_sounds.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <utility>

namespace vantoro::testing {
namespace {

constexpr double framesPerSecond = 48000;

} // namespace

Sound silence() {
    return [](std::int64_t) { return 0.0F; };
}

Sound tone(double frequency, float amplitude) {
    return [=](std::int64_t frame) {
        const double phase =
            2 * std::numbers::pi * frequency * static_cast<double>(frame) / framesPerSecond;
        return amplitude * static_cast<float>(std::sin(phase));
    };
}

Sound clicks(std::vector<std::int64_t> frames) {
    return [frames = std::move(frames)](std::int64_t frame) {
        // A burst of 3 kHz under a bell, whose peak survives encoding within a few frames.
        constexpr double halfWidth = 48;
        float sum = 0;
        for (const std::int64_t center : frames) {
            const auto distance = static_cast<double>(frame - center);
            if (std::abs(distance) < halfWidth) {
                sum += static_cast<float>(
                    0.8 * std::cos(2 * std::numbers::pi * distance / 16) *
                    std::pow(std::cos(std::numbers::pi * distance / (2 * halfWidth)), 2));
            }
        }
        return sum;
    };
}

std::int64_t clickIn(std::span<const float> samples, std::int64_t from, std::int64_t to) {
    const auto size = static_cast<std::int64_t>(samples.size());
    const auto range = samples.subspan(static_cast<std::size_t>(std::min(from, size)),
                                       static_cast<std::size_t>(std::min(to, size) - from));
    const auto loudest =
        std::ranges::max_element(range, {}, [](float sample) { return std::abs(sample); });
    return from + (loudest - range.begin());
}

double levelOf(std::span<const float> samples, double frequency) {
    const double step = 2 * std::numbers::pi * frequency / framesPerSecond;
    std::complex<double> sum;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        sum += static_cast<double>(samples[i]) * std::polar(1.0, -step * static_cast<double>(i));
    }
    return 20 * std::log10((2 * std::abs(sum) / static_cast<double>(samples.size())) + 1e-9);
}

} // namespace vantoro::testing

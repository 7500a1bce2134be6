// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <numeric>

#include "tests/platform/pipewire/capture_fixture.h"

namespace vantoro::testing {

namespace {

// So short that a step in pitch, which is not noise, hardly shows.
constexpr std::size_t windowFrames = 512;
constexpr std::size_t terms = 8;

using Row = std::array<double, terms + 1>;

/// Solves the normal equations; the last column holds the right-hand sides.
std::array<double, terms> solved(std::array<Row, terms> rows) {
    for (std::size_t i = 0; i < terms; ++i) {
        const auto pivot =
            std::ranges::max_element(rows.begin() + static_cast<std::ptrdiff_t>(i), rows.end(), {},
                                     [i](const Row& row) { return std::abs(row.at(i)); });
        std::swap(rows.at(i), *pivot);
        for (std::size_t j = 0; j < terms; ++j) {
            const double factor = rows.at(j).at(i) / rows.at(i).at(i);
            for (std::size_t k = i; j != i && k <= terms; ++k) {
                rows.at(j).at(k) -= factor * rows.at(i).at(k);
            }
        }
    }
    std::array<double, terms> result{};
    for (std::size_t i = 0; i < terms; ++i) {
        result.at(i) = rows.at(i).at(terms) / rows.at(i).at(i);
    }
    return result;
}

/// Basis functions of a tone with smoothly changing amplitude and phase, at a position from -1 to
/// 1.
std::array<double, terms> partsOf(double phase, double place) {
    std::array<double, terms> parts{};
    double power = 1;
    for (std::size_t i = 0; i < terms; i += 2) {
        parts.at(i) = power * std::cos(phase);
        parts.at(i + 1) = power * std::sin(phase);
        power *= place;
    }
    return parts;
}

/// The rest of a window without a tone of this frequency, in dBFS.
double noiseBeside(double frequency, std::span<const float> samples) {
    const double step = 2 * std::numbers::pi * frequency / 48000;
    const auto half = static_cast<double>(samples.size()) / 2;
    const auto partsAt = [&](std::size_t i) {
        const auto frame = static_cast<double>(i);
        return partsOf(step * frame, (frame - half) / half);
    };
    std::array<Row, terms> rows{};
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const auto parts = partsAt(i);
        for (std::size_t row = 0; row < terms; ++row) {
            for (std::size_t column = 0; column < terms; ++column) {
                rows.at(row).at(column) += parts.at(row) * parts.at(column);
            }
            rows.at(row).at(terms) += parts.at(row) * static_cast<double>(samples[i]);
        }
    }
    const auto weights = solved(rows);
    double energy = 0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const auto parts = partsAt(i);
        const double tone = std::inner_product(parts.begin(), parts.end(), weights.begin(), 0.0);
        energy += std::pow(static_cast<double>(samples[i]) - tone, 2);
    }
    const double meanSquare = energy / static_cast<double>(samples.size());
    return 10 * std::log10(std::max(2 * meanSquare, 1e-20));
}

/// The noise once the card's clock is known, ignoring the few windows in which a busy machine may
/// delay the card. A change of speed every second would show in more of them.
double noiseOfACard(CapturedSound& sound, double frequency) {
    const auto spoken = sound.microphone();
    const std::span<const float> samples(spoken.channels.at(0));
    std::vector<double> noise;
    constexpr std::size_t settled = 8 * 48000;
    for (std::size_t i = settled; i + windowFrames < samples.size(); i += windowFrames) {
        noise.push_back(noiseBeside(frequency, samples.subspan(i, windowFrames)));
    }
    std::ranges::sort(noise);
    return noise.at(noise.size() - 5);
}

class CardWithAClock : public Capture {
protected:
    void hear(const std::string& millionths, const std::string& frequency) {
        const ChildProcess card(
            {VANTORO_DRIFTING_DEVICE, "source", "card", millionths, "0", frequency});
        ASSERT_TRUE(SoundSession::waitForPort("card:capture_MONO"));
        startWithMicrophone("card");
        ASSERT_TRUE(sound.waitForMore(24));
        stop();
        EXPECT_TRUE(sound.stops().empty());
    }
};

TEST_F(CardWithAClock, isHeardWithoutNoiseWhileSteered) {
    hear("500", "1000");
    EXPECT_LT(noiseOfACard(sound, 1000.5), -90);
}

} // namespace

} // namespace vantoro::testing

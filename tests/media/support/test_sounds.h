// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace vantoro::testing {

/// So many frames.
inline constexpr std::int64_t second = 48000;

/// The sample of a channel at a frame, counted from the recording's beginning.
using Sound = std::function<float(std::int64_t frame)>;

Sound silence();
Sound tone(double frequency, float amplitude);
/// A short burst at each of the frames, and silence between.
Sound clicks(std::vector<std::int64_t> frames);

/// The frame of the burst that is loudest between two frames.
std::int64_t clickIn(std::span<const float> samples, std::int64_t from, std::int64_t to);
/// The amplitude of one frequency in the samples, in decibels below full scale.
double levelOf(std::span<const float> samples, double frequency);

} // namespace vantoro::testing

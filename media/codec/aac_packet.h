// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "media/codec/aac.h"

namespace vantoro::media {

/// The window end of a single-channel packet. Throws as `joinChannels`.
WindowEnd windowEndOf(std::span<const std::uint8_t> packet);

/// Joins one or two single-channel packets into one AAC packet without decoding them, and raises
/// each channel's gain by `gainSteps` of 1.5 dB.
/// Throws std::runtime_error if a packet does not hold exactly one channel.
std::vector<std::uint8_t> joinChannels(std::span<const std::span<const std::uint8_t>> channels,
                                       unsigned gainSteps);

} // namespace vantoro::media

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vantoro::media {

/// How a channel's sound fades into the next packet's: two packets that begin and end alike there
/// can take each other's place.
struct WindowEnd {
    bool isShort = false;
    unsigned shape = 0;

    bool operator==(const WindowEnd&) const = default;
};

/// Of a packet of a single channel. Throws as `joinChannels`.
WindowEnd windowEndOf(std::span<const std::uint8_t> packet);

/// Makes one AAC packet of one or two channels from packets of a single channel each, without
/// decoding them, and has each sound louder by `gainSteps` of a quarter of 6.02 dB.
/// Throws std::runtime_error when a packet does not consist of just one channel.
std::vector<std::uint8_t> joinChannels(std::span<const std::span<const std::uint8_t>> channels,
                                       unsigned gainSteps);

} // namespace vantoro::media

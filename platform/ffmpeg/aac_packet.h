#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vantoro::ffmpeg {

/// Makes one AAC packet of one or two channels from packets of a single channel each, without
/// decoding them, and has each sound louder by `gainSteps` of a quarter of 6.02 dB.
/// Throws std::runtime_error when a packet does not consist of just one channel.
std::vector<std::uint8_t> joinChannels(std::span<const std::span<const std::uint8_t>> channels,
                                       unsigned gainSteps);

} // namespace vantoro::ffmpeg

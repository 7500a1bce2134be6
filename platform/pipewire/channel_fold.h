#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vantoro::pipewire {

/// The channels of a tap, in the order of its interleaved samples.
inline constexpr std::array<std::string_view, 8> tapChannels = {"FL", "FR", "FC", "LFE",
                                                                "RL", "RR", "SL", "SR"};

/// Folds frames of `tapChannels` to left and right: centre and surrounds at 0.707, low-frequency
/// effects left out. Interleaved; `stereo` has 2 samples for each 8 of `surround`. Real-time safe.
void foldToStereo(std::span<const float> surround, std::span<float> stereo) noexcept;

/// The channels of a tap that one port of an application's stream is to reach, for each of the
/// stream's ports in order. What has no side of its own reaches both, at full level where it is
/// all that the stream has of the front.
std::vector<std::vector<std::string_view>> tapChannelsFor(const std::vector<std::string>& channels);

} // namespace vantoro::pipewire

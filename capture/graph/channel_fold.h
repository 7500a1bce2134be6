// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vantoro::capture {

/// The channels of a tap: what is heard from a side as it is, and what is to be heard from it at
/// 0.707, as centre and surrounds are. Each costs every recording some time, so there are no more.
inline constexpr std::array<std::string_view, 4> tapChannels = {"FL", "FR", "SL", "SR"};

using TapPlanes = std::array<std::span<const float>, tapChannels.size()>;

/// Folds frames of `tapChannels` to left and right, as many as there is room for in both.
/// Real-time safe.
void foldToStereo(const TapPlanes& planes, std::span<float> left, std::span<float> right) noexcept;

/// Whether a channel's name says where it is heard.
bool hasPlace(std::string_view channel);

/// Which of a stream's channels the sound server has made from others, for an output that has more
/// of them than the application gives (`given`, empty where that is not known): surround and centre
/// from stereo, late and quieter, and everything from mono. Folded with the front, which then has
/// all of it, they would be echoes.
std::vector<bool> areMadeFromOthers(const std::vector<std::string>& channels,
                                    const std::vector<std::string>& given);

/// The channels of a tap that one port of an application's stream is to reach, for each of the
/// stream's ports in order. What has no side of its own reaches both, at full level where it is
/// all that the stream has of the front; low-frequency effects reach none.
std::vector<std::vector<std::string_view>> tapChannelsFor(const std::vector<std::string>& channels);

} // namespace vantoro::capture

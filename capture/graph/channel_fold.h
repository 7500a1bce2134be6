// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vantoro::capture {

/// A tap's channels: sides at full level, centre and surrounds at 0.707. Each costs every recording
/// processor time, so there are no more.
inline constexpr std::array<std::string_view, 4> tapChannels = {"FL", "FR", "SL", "SR"};

using TapPlanes = std::array<std::span<const float>, tapChannels.size()>;

/// Downmixes frames of `tapChannels` to stereo, as many as fit in both outputs. Real-time safe.
void foldToStereo(const TapPlanes& planes, std::span<float> left, std::span<float> right) noexcept;

/// Whether a channel's name implies a position.
bool hasPosition(std::string_view channel);

/// Which of a stream's channels the sound server has synthesized for an output with more channels
/// than the application's (`given`, empty if unknown). Downmixed with the front pair, they would
/// echo.
std::vector<bool> areMadeFromOthers(const std::vector<std::string>& channels,
                                    const std::vector<std::string>& given);

/// For each port of a stream, in order: the tap channels to link it to. A channel without a side
/// goes to both, at full level if it is the whole front. Low-frequency effects are left out.
std::vector<std::vector<std::string_view>> tapChannelsFor(const std::vector<std::string>& channels);

} // namespace vantoro::capture

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "media/coding/aac_track.h"

namespace vantoro::media {

/// How many packets lie in one row in the file, before another offset is noted.
inline constexpr std::size_t packetsPerRow = 64;

/// The file's first bytes.
std::vector<std::byte> m4aFileType();

/// The file's index, of so many `frames` that are to be heard (neither priming nor padding), up to
/// the table of the packets' sizes, which its caller writes behind it: 32 bits big-endian for each
/// packet, as many as `packetCount`, at least one. `rowOffsets`: where each row of packets begins
/// in the file.
std::vector<std::byte> m4aIndex(const AacTrack& track, std::int64_t frames, std::size_t packetCount,
                                std::span<const std::uint64_t> rowOffsets);

} // namespace vantoro::media

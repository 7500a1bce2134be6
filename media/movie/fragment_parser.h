// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "engine/ports/file_system.h"
#include "media/movie/movie_scan.h"

namespace vantoro::media {

/// Of a fragment, in bytes. Ten seconds of two tracks take some 940 packets and 10 KB.
inline constexpr std::uint64_t largestDescription = 1U << 20U;

/// Where a packet lies in a file.
struct PacketPlace {
    std::uint64_t offset = 0;
    std::uint32_t size = 0;
    std::uint32_t duration = 0; ///< frames
};

/// The packets of one track in a fragment.
struct PacketRow {
    std::size_t track = 0;
    std::uint64_t start = 0; ///< frames before it, the priming counted
    std::vector<PacketPlace> packets;
};

struct Fragment {
    std::uint64_t contentEnd = 0;          ///< offset behind its packets
    std::uint64_t end = 0;                 ///< offset behind it and its checksum
    std::optional<std::uint32_t> checksum; ///< of the bytes up to `contentEnd`, where it is stored
    std::vector<PacketRow> rows;
};

/// Reads the description of the fragment at `offset`. Throws DamagedMovie when that and all of the
/// packets that it names do not lie inside the fragment, or are more than any recording has. Each
/// track has one row at most, whose packets lie one behind the other: what it costs to read them
/// all is bounded by the fragment's size.
Fragment readFragment(const InputFile& file, std::uint64_t offset,
                      std::span<const TrackHeader> tracks);

} // namespace vantoro::media

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "engine/ports/file_system.h"
#include "engine/ports/recording_tags.h"
#include "media/movie/movie_scan.h"

namespace vantoro::media {

/// In bytes. Ten seconds of two tracks take about 940 packets and 10 KB.
inline constexpr std::uint64_t maxDescriptionSize = 1U << 20U;

/// A packet's position in the file.
struct PacketPlace {
    std::uint64_t offset = 0;
    std::uint32_t size = 0;
    std::uint32_t duration = 0; ///< frames
};

/// The packets of one track in a fragment.
struct TrackFragment {
    std::size_t track = 0;
    std::uint64_t start = 0; ///< in frames, including the priming
    std::vector<PacketPlace> packets;
};

struct Fragment {
    std::uint64_t contentEnd = 0;          ///< offset after its packets
    std::uint64_t end = 0;                 ///< offset after its checksum
    std::optional<std::uint32_t> checksum; ///< of the bytes up to `contentEnd`, if stored
    std::vector<TrackFragment> parts;
    std::vector<RecordingMark> marks;
};

/// Reads the description of the fragment at `offset`. Throws DamagedMovie if it is incomplete, if a
/// packet lies outside the fragment, or if there are more packets than any recording has. Each
/// track has at most one part, whose packets are in file order, so the fragment's size bounds the
/// cost of reading them.
Fragment readFragment(const InputFile& file, std::uint64_t offset,
                      std::span<const TrackHeader> tracks);

} // namespace vantoro::media

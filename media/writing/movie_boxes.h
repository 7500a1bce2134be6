// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "media/coding/aac_track.h"

namespace vantoro::media {

// The boxes of a fragmented QuickTime movie. Track numbers start at 1.

/// One track's part of a fragment.
struct FragmentTrack {
    std::uint32_t number = 1;
    std::int64_t time = 0; ///< of the first packet, in frames, including the priming

    struct Packet {
        std::uint32_t bytes = 0;
        std::uint32_t frames = 0;
    };

    std::vector<Packet> packets; ///< at least one
};

/// An entry of the index: where a track's part of a fragment is.
struct FragmentEntry {
    std::int64_t time = 0;    ///< first audible frame, from the session's start
    std::uint64_t offset = 0; ///< of the fragment in the file
};

/// The movie's first bytes: file type and tracks.
std::vector<std::byte> movieHeader(std::span<const AacTrack> tracks);

/// A fragment without its content, which is all packets in the order of `tracks`. Fragment numbers
/// start at 1.
std::vector<std::byte> fragmentHeader(std::uint32_t number, std::span<const FragmentTrack> tracks);

/// The movie's last bytes: the index of each track's fragments.
std::vector<std::byte> fragmentIndex(std::span<const std::vector<FragmentEntry>> tracks);

} // namespace vantoro::media

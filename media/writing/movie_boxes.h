// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "media/coding/aac_track.h"

namespace vantoro::media {

// The boxes of a QuickTime movie of fragments. Its tracks are counted from 1.

/// What a fragment has of one track.
struct FragmentTrack {
    std::uint32_t number = 1;
    std::int64_t time = 0; ///< of the first packet, in frames from the priming on

    struct Packet {
        std::uint32_t bytes = 0;
        std::uint32_t frames = 0;
    };

    std::vector<Packet> packets; ///< at least one
};

/// Where a track's part of a fragment is found.
struct FragmentEntry {
    std::int64_t time = 0;    ///< of what is heard first, in frames from the session's start
    std::uint64_t offset = 0; ///< of the fragment, in the file
};

/// The movie's first bytes: what kind of file it is, and its tracks.
std::vector<std::byte> movieHeader(std::span<const AacTrack> tracks);

/// A fragment, but for the content: the packets of each track, as `tracks` has them, one behind
/// another. Fragments are counted from 1.
std::vector<std::byte> fragmentHeader(std::uint32_t number, std::span<const FragmentTrack> tracks);

/// The movie's last bytes: of each track, where its fragments are.
std::vector<std::byte> fragmentIndex(std::span<const std::vector<FragmentEntry>> tracks);

} // namespace vantoro::media

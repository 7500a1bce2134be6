// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "media/coding/coding.h"
#include "media/writing/movie_boxes.h"

namespace vantoro::media {

/// Puts coded tracks into the fragments of a QuickTime movie, as bytes in memory.
/// Used by one thread at a time; throws std::runtime_error where it fails.
class FragmentMuxer {
public:
    /// Before the first fragment, in the order in which the tracks lie in the file.
    void addTrack(AacTrack description);

    /// Packets of a track come in order and without gaps.
    void add(std::size_t track, AacPacket packet);

    /// How many of the track's frames lie in packets so far, from the session's start.
    std::int64_t end(std::size_t track) const noexcept { return tracks_[track].end; }

    bool hasPackets() const noexcept;

    /// The bytes of the next fragment, the first with the movie's header before it: of all packets
    /// that begin before `end`.
    std::vector<std::byte> closeFragment(std::int64_t end);
    /// The movie's last bytes, behind the last fragment.
    std::vector<std::byte> finish() const;

private:
    struct Track {
        AacTrack description;
        std::vector<AacPacket> packets; // not yet in a fragment
        std::int64_t end = 0;
        std::vector<FragmentEntry> fragments;
    };

    std::vector<std::byte> header() const;

    std::vector<Track> tracks_;
    std::uint32_t fragments_ = 0;
    std::uint64_t size_ = 0; // of all that was handed out
};

} // namespace vantoro::media

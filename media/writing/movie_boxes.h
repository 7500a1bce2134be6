// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "engine/ports/recording_tags.h"
#include "media/codec/aac.h"

namespace vantoro::media {

// The boxes of a fragmented QuickTime movie. Track numbers start at 1.

/// One track's part of a fragment.
struct FragmentTrack {
    std::uint32_t number = 1;
    std::vector<AacPacket> packets; ///< at least one
};

/// An entry of the index: where a track's part of a fragment is.
struct FragmentEntry {
    std::int64_t time = 0;    ///< first audible frame, from the session's start
    std::uint64_t offset = 0; ///< of the fragment in the file
};

/// The movie's first bytes: file type, tags and tracks.
std::vector<std::byte> movieHeader(std::span<const AacTrack> tracks, const RecordingTags& tags);

/// A fragment with its content. Fragment numbers start at 1. Throws std::runtime_error if it is too
/// large for its size field.
std::vector<std::byte> movieFragment(std::uint32_t number, std::span<const FragmentTrack> tracks,
                                     std::span<const RecordingMark> marks);

/// The movie's last bytes: the index of each track's fragments.
std::vector<std::byte> fragmentIndex(std::span<const std::vector<FragmentEntry>> tracks);

} // namespace vantoro::media

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "engine/ports/recording_tags.h"
#include "media/codec/aac.h"
#include "media/writing/movie_boxes.h"

namespace vantoro::media {

/// Muxes encoded tracks into the fragments of a QuickTime movie, in memory.
/// Used by one thread at a time; throws std::runtime_error on failure.
class FragmentMuxer {
public:
    /// Call before the first fragment, in file order.
    void addTrack(AacTrack description);

    /// Call before the first fragment.
    void setTags(RecordingTags tags) { tags_ = std::move(tags); }

    /// A track's packets must be added in order and without gaps.
    void add(std::size_t track, AacPacket packet);

    /// The end of the track's packets, in frames from the session's start.
    std::int64_t end(std::size_t track) const noexcept { return tracks_[track].end; }

    /// For the next fragment.
    void addMark(RecordingMark mark) { marks_.push_back(std::move(mark)); }

    /// Whether another fragment has anything to hold.
    bool hasContent() const noexcept;

    /// The next fragment, with all packets that begin before `end`. The movie's header precedes the
    /// first fragment.
    std::vector<std::byte> closeFragment(std::int64_t end);

    std::vector<std::byte> finish() const { return fragmentIndex(index_); }

private:
    struct Track {
        std::vector<AacPacket> packets; // for the next fragments
        std::int64_t end = 0;
    };

    RecordingTags tags_;
    std::vector<RecordingMark> marks_; // for the next fragment
    std::vector<Track> tracks_;
    std::vector<AacTrack> descriptions_;            // of the tracks
    std::vector<std::vector<FragmentEntry>> index_; // by track
    std::uint32_t fragments_ = 0;
    std::uint64_t size_ = 0; // of all bytes returned
};

} // namespace vantoro::media

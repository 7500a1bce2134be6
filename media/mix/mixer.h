// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include "media/mix/track_samples.h"
#include "media/movie/movie.h"

namespace vantoro::media {

/// The length of a track whose end is not known yet.
inline constexpr std::int64_t unknownFrames = std::numeric_limits<std::int64_t>::max() / 2;

/// A movie's track and its volume in a mix.
struct MixedTrack {
    std::shared_ptr<const Movie> movie;
    std::size_t track = 0; ///< index in the scan
    std::int64_t frames = 0;
    float volume = 1;
};

/// Tracks that play together from time zero.
using Mix = std::vector<MixedTrack>;

/// The length of the longest track.
std::int64_t framesOf(const Mix& mix) noexcept;

/// Sums a mix's tracks at their volumes and clips the sum to full scale. Used by one thread at a
/// time; several mixers may share a mix.
class Mixer {
public:
    /// Starts at frame `block` × 1024 of the mix. Throws as `read`.
    Mixer(const Coding& coding, const Mix& mix, std::int64_t block);

    /// The next 1024 frames; an ended track is silent. Throws if a file cannot be read.
    void read(const StereoBlock& block);

    /// Sets the ends of tracks whose ends were unknown; they lie after what was read.
    void setEnd(const Mix& mix) noexcept;

private:
    struct Track {
        TrackSamples samples;
        float volume;
    };

    std::vector<Track> tracks_;
    std::int64_t position_; // in frames
};

} // namespace vantoro::media

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include "media/mix/track_samples.h"
#include "media/movie/movie.h"

namespace vantoro::media {

/// Of a track whose end is not known yet.
inline constexpr std::int64_t unknownFrames = std::numeric_limits<std::int64_t>::max() / 2;

/// A movie's track, and how loud it is in a mix.
struct MixedTrack {
    std::shared_ptr<const Movie> movie;
    std::size_t track = 0; ///< in the scan
    std::int64_t frames = 0;
    float volume = 1;
};

/// Tracks side by side, from the mix's beginning on.
using Mix = std::vector<MixedTrack>;

/// Of the longest track.
std::int64_t framesOf(const Mix& mix) noexcept;

/// The tracks of a mix, summed at their volumes and limited to full scale. Used by one thread at a
/// time; several may read one mix.
class Mixer {
public:
    /// Its first `read` begins `block` × 1024 frames behind the mix's beginning. Throws as `read`.
    Mixer(const Coding& coding, const Mix& mix, std::int64_t block);

    /// The next 1024 frames; silence where a track has ended. Throws when a file cannot be read.
    void read(const StereoBlock& block);

    /// The tracks, of which no end was known, end as those of `mix` do: behind what was read.
    void endAs(const Mix& mix) noexcept;

private:
    struct Track {
        TrackSamples samples;
        float volume;
    };

    std::vector<Track> tracks_;
    std::int64_t position_; // in frames
};

} // namespace vantoro::media

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "engine/ports/media_toolkit.h"
#include "media/movie/movie_asset.h"

namespace vantoro::media {

/// A range of a movie's track, laid at the composition's beginning.
class MovieCompositionTrack final : public CompositionTrack {
public:
    /// A later insertion takes the place of an earlier one. Throws std::invalid_argument for a
    /// track of another toolkit, a range outside the track, and any other time than zero.
    void insert(TimeRange range, std::shared_ptr<const AssetTrack> source, MediaTime at) override;

    /// Null while nothing was inserted.
    const MovieTrack* source() const noexcept { return source_.get(); }

    /// Frames from the track's beginning.
    std::int64_t start() const noexcept { return start_; }

    std::int64_t frames() const noexcept { return frames_; }

private:
    std::shared_ptr<const MovieTrack> source_;
    std::int64_t start_ = 0;
    std::int64_t frames_ = 0;
};

class MovieComposition final : public Composition {
public:
    static constexpr std::size_t mostTracks = 16;

    CompositionTrack* addAudioTrack() override;

    const std::vector<std::unique_ptr<MovieCompositionTrack>>& tracks() const noexcept {
        return tracks_;
    }

private:
    std::vector<std::unique_ptr<MovieCompositionTrack>> tracks_;
};

} // namespace vantoro::media

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <algorithm>
#include <cstdint>
#include <stdexcept>

namespace vantoro::media {

/// What to do with one buffer, in this order. In frames, not negative.
struct Placement {
    std::int64_t silence = 0; ///< to insert before it
    std::int64_t skip = 0;    ///< to drop from its beginning
    std::int64_t take = 0;    ///< to take after that

    friend bool operator==(const Placement&, const Placement&) = default;
};

/// Places one track's buffers end to end from the session's start, so that each frame's position in
/// the file matches its time stamp.
///
/// The first buffer, and each one after inserted silence or a dropped buffer, goes exactly where
/// its time stamp says. After that, time stamps, which are accurate only on average, may deviate by
/// up to 20 ms before silence fills a gap or frames are dropped for an overlap.
class TrackTimeline {
public:
    static constexpr std::int64_t tolerance = 960;         ///< frames: 20 ms
    static constexpr std::int64_t maxGap = 48000LL * 3600; ///< frames: 1 h

    /// The track's length in frames.
    std::int64_t position() const noexcept { return position_; }

    /// Places a buffer of `frames` whose first frame was captured `time` frames after the session's
    /// start. Throws std::runtime_error for a gap above `maxGap`: its time stamp must be wrong, and
    /// filling it would take long.
    Placement place(std::int64_t time, std::int64_t frames) {
        const std::int64_t gap = time - position_;
        if (gap > maxGap) {
            throw std::runtime_error(
                "A time stamp of the captured sound is too far in the future.");
        }
        Placement placement{.take = frames};
        if (!followsBuffer_ || gap > tolerance || gap < -tolerance) {
            placement.silence = std::max<std::int64_t>(gap, 0);
            placement.skip = std::clamp<std::int64_t>(-gap, 0, frames);
            placement.take = frames - placement.skip;
        }
        position_ += placement.silence + placement.take;
        followsBuffer_ = placement.take > 0;
        return placement;
    }

    /// Extends the track to `position`; returns how much silence that takes.
    std::int64_t fillTo(std::int64_t position) noexcept {
        const std::int64_t silence = std::max<std::int64_t>(position - position_, 0);
        position_ += silence;
        followsBuffer_ = followsBuffer_ && silence == 0;
        return silence;
    }

private:
    std::int64_t position_ = 0;
    bool followsBuffer_ = false;
};

} // namespace vantoro::media

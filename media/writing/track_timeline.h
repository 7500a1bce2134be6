// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

namespace vantoro::media {

/// What becomes of one buffer, in this order. All in frames, none negative.
struct Placement {
    std::int64_t silence = 0; ///< put in before it
    std::int64_t skip = 0;    ///< of its beginning, left out
    std::int64_t take = 0;    ///< of the rest, taken

    friend bool operator==(const Placement&, const Placement&) = default;
};

/// Lays the buffers of one track end to end from the session's start, so that a reader finds every
/// frame where its time stamp says, though the file holds no time but the count of frames.
///
/// The first frame after the track's start, after put-in silence or after a buffer that was left
/// out goes exactly where its stamp says. From then on stamps may wander by up to 20 ms (they are
/// the truth in the long run only) before silence fills a gap or frames are left out for an
/// overlap.
class TrackTimeline {
public:
    static constexpr std::int64_t tolerance = 960;             ///< frames: 20 ms
    static constexpr std::int64_t longestGap = 48000LL * 3600; ///< frames: 1 h

    /// How many frames the track has.
    std::int64_t position() const noexcept { return position_; }

    /// Where a buffer of `frames` goes whose first frame was captured `time` frames after the
    /// session's start. Throws std::runtime_error when its stamp is beyond `longestGap`: no such
    /// gap is real, and filling it would take its time.
    Placement place(std::int64_t time, std::int64_t frames);

    /// How much silence brings the track to `position`.
    std::int64_t fillTo(std::int64_t position) noexcept;

private:
    std::int64_t position_ = 0;
    bool followsBuffer_ = false;
};

} // namespace vantoro::media

// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/writing/track_timeline.h"

#include <algorithm>
#include <stdexcept>

namespace vantoro::media {

Placement TrackTimeline::place(std::int64_t time, std::int64_t frames) {
    const std::int64_t gap = time - position_;
    if (gap > maxGap) {
        throw std::runtime_error("A time stamp of the captured sound is too far in the future.");
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

std::int64_t TrackTimeline::fillTo(std::int64_t position) noexcept {
    const std::int64_t silence = std::max<std::int64_t>(position - position_, 0);
    if (silence > 0) {
        position_ += silence;
        followsBuffer_ = false;
    }
    return silence;
}

} // namespace vantoro::media

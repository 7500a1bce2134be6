// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/mix/composition.h"

#include <stdexcept>
#include <utility>

#include "media/coding/aac.h"

namespace vantoro::media {

void MovieCompositionTrack::insert(TimeRange range, std::shared_ptr<const AssetTrack> source,
                                   MediaTime at) {
    auto track = std::dynamic_pointer_cast<const MovieTrack>(std::move(source));
    if (!track || !range.start.isValid() || !range.duration.isValid() || at != zeroTime) {
        throw std::invalid_argument("This cannot be laid on the timeline.");
    }
    const std::int64_t start = range.start.inUnitsOf(framesPerSecond);
    const std::int64_t frames = range.duration.inUnitsOf(framesPerSecond);
    const std::int64_t available = track->timeRange().duration.inUnitsOf(framesPerSecond);
    if (start < 0 || frames < 0 || start > available || frames > available - start) {
        throw std::invalid_argument("The range lies outside its track.");
    }
    source_ = std::move(track);
    start_ = start;
    frames_ = frames;
}

CompositionTrack* MovieComposition::addAudioTrack() {
    if (tracks_.size() == mostTracks) {
        return nullptr;
    }
    return tracks_.emplace_back(std::make_unique<MovieCompositionTrack>()).get();
}

} // namespace vantoro::media

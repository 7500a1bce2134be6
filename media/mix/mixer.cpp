// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/mix/mixer.h"

#include <algorithm>
#include <cstddef>

namespace vantoro::media {

std::int64_t framesOf(const Mix& mix) noexcept {
    std::int64_t frames = 0;
    for (const MixedTrack& track : mix) {
        frames = std::max(frames, track.frames);
    }
    return frames;
}

Mixer::Mixer(const Coding& coding, const Mix& mix, std::int64_t block)
    : position_(block * packetFrames) {
    for (const MixedTrack& track : mix) {
        if (track.frames > position_) {
            tracks_.push_back({TrackSamples(coding, track.movie, track.track, position_,
                                            track.frames - position_),
                               track.volume});
        }
    }
}

void Mixer::read(const StereoBlock& block) {
    for (const auto plane : {block.left, block.right}) {
        std::ranges::fill(plane, 0.0F);
    }
    for (Track& track : tracks_) {
        track.samples.addTo(block, track.volume);
    }
    position_ += packetFrames;
    for (const auto plane : {block.left, block.right}) {
        // Some decoders wrap around beyond full scale, which crackles.
        for (float& sample : plane) {
            sample = std::clamp(sample, -1.0F, 1.0F);
        }
    }
}

void Mixer::setEnd(const Mix& mix) noexcept {
    for (std::size_t track = 0; track < tracks_.size(); ++track) {
        tracks_[track].samples.setRemaining(
            std::max<std::int64_t>(0, mix[track].frames - position_));
    }
}

} // namespace vantoro::media

#include "platform/ffmpeg/mixer.h"

#include <algorithm>

namespace vantoro::ffmpeg {

std::int64_t framesOf(const Mix& mix) noexcept {
    std::int64_t frames = 0;
    for (const MixedTrack& track : mix) {
        frames = std::max(frames, track.frames);
    }
    return frames;
}

Mixer::Mixer(const Mix& mix, std::int64_t block) {
    const std::int64_t skipped = block * packetFrames;
    for (const MixedTrack& track : mix) {
        if (track.frames > skipped) {
            tracks_.push_back(
                {TrackSamples(*track.source, track.start + skipped, track.frames - skipped),
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
    for (const auto plane : {block.left, block.right}) {
        // Beyond full scale decoders differ: some wrap around, which crackles.
        for (float& sample : plane) {
            sample = std::clamp(sample, -1.0F, 1.0F);
        }
    }
}

} // namespace vantoro::ffmpeg

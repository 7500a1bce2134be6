// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/mix/track_samples.h"

#include <algorithm>
#include <cstddef>

namespace vantoro::media {

namespace {

void addScaled(std::span<float> sum, std::span<const float> samples, float gain) {
    const std::size_t count = sum.size();
    for (std::size_t i = 0; i < count; ++i) {
        sum[i] += gain * samples[i];
    }
}

} // namespace

TrackSamples::TrackSamples(const Coding& coding, const std::shared_ptr<const Movie>& movie,
                           std::size_t track, std::int64_t start, std::int64_t frames)
    : packets_(movie, track),
      decoder_(coding.makeDecoder(*movie->codecs[track])),
      remaining_(frames) {
    // A packet decodes correctly only after the previous one, which always exists: the priming is
    // packet 0.
    packets_.seek(start / packetFrames);
    loadPacket();
    loadPacket();
    position_ = static_cast<int>(start % packetFrames);
}

void TrackSamples::addTo(const StereoBlock& block, float gain) {
    for (int filled = 0; filled < packetFrames && remaining_ > 0;) {
        if (position_ == packetFrames) {
            loadPacket();
        }
        const int room = packetFrames - std::max(filled, position_);
        const int count = static_cast<int>(std::min<std::int64_t>(room, remaining_));
        if (sound_) {
            const auto into = static_cast<std::size_t>(filled);
            const auto from = static_cast<std::size_t>(position_);
            const auto size = static_cast<std::size_t>(count);
            addScaled(block.left.subspan(into, size), sound_->left.subspan(from, size), gain);
            addScaled(block.right.subspan(into, size), sound_->right.subspan(from, size), gain);
        }
        filled += count;
        position_ += count;
        remaining_ -= count;
    }
}

void TrackSamples::loadPacket() {
    const auto packet = packets_.next();
    const bool isAvailable = packet && !packet->empty();
    if (packet && packet->empty()) {
        decoder_->reset(); // or sound from before the gap would leak into it
    }
    sound_ = isAvailable ? decoder_->decode(*packet) : std::nullopt;
    position_ = 0;
}

} // namespace vantoro::media

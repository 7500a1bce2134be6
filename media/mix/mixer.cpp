// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/mix/mixer.h"

#include <algorithm>
#include <utility>

namespace vantoro::media {

namespace {

void addScaled(std::span<float> sum, std::span<const float> samples, float gain) {
    const std::size_t count = sum.size();
    for (std::size_t i = 0; i < count; ++i) {
        sum[i] += gain * samples[i];
    }
}

} // namespace

std::int64_t framesOf(const Mix& mix) noexcept {
    std::int64_t frames = 0;
    for (const MixedTrack& track : mix) {
        frames = std::max(frames, track.frames);
    }
    return frames;
}

Mixer::Mixer(const AacCodec& codec, const Mix& mix, std::int64_t block)
    : position_(block * packetFrames) {
    for (const auto& [movie, track, frames, volume] : mix) {
        if (frames > position_) {
            auto& added =
                tracks_.emplace_back(PacketReader(movie, track),
                                     codec.makeDecoder(*movie->codecs[track]), frames, volume);
            // A packet decodes correctly only after the previous one, which always exists: the
            // priming is packet 0.
            added.packets.seek(block);
            added.decodeNext();
        }
    }
}

void Mixer::read(const StereoBlock& block) {
    for (const auto plane : {block.left, block.right}) {
        std::ranges::fill(plane, 0.0F);
    }
    for (Track& track : tracks_) {
        const std::int64_t left = track.frames - position_;
        const auto count =
            static_cast<std::size_t>(std::clamp<std::int64_t>(left, 0, packetFrames));
        if (const auto sound = count > 0 ? track.decodeNext() : std::nullopt) {
            addScaled(block.left.first(count), sound->left, track.volume);
            addScaled(block.right.first(count), sound->right, track.volume);
        }
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
        tracks_[track].frames = mix[track].frames;
    }
}

/// Nothing if the next packet is silent.
std::optional<DecodedSound> Mixer::Track::decodeNext() {
    const auto packet = packets.next();
    if (!packet) {
        return std::nullopt;
    }
    if (packet->empty()) {
        decoder->reset(); // or sound from before the gap would leak into it
        return std::nullopt;
    }
    return decoder->decode(*packet);
}

} // namespace vantoro::media

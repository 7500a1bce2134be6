// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/writing/track_encoder.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <stdexcept>
#include <utility>

namespace vantoro::media {

bool fitsTrack(const SampleBuffer& buffer, int channels) noexcept {
    if (!buffer.format || buffer.frameCount < 0 || buffer.format->sampleRate != framesPerSecond ||
        buffer.format->channelsPerFrame != static_cast<std::uint32_t>(channels)) {
        return false;
    }
    const std::size_t size = buffer.samples.size();
    const auto channelCount = static_cast<std::size_t>(channels);
    return size % channelCount == 0 &&
           size / channelCount == static_cast<std::size_t>(buffer.frameCount);
}

void copySamples(const SampleBuffer& buffer, int channel, std::int64_t firstFrame,
                 std::span<float> into) noexcept {
    const auto offset = static_cast<std::size_t>((channel * buffer.frameCount) + firstFrame);
    std::ranges::replace_copy_if(
        buffer.samples.subspan(offset, into.size()), into.begin(),
        [](float sample) { return !std::isfinite(sample); }, 0.0F);
}

TrackEncoder::TrackEncoder(const AacCodec& codec, int channels, int bitRate, PacketSink sink)
    : encoder_(codec, channels, bitRate, batchPackets), sink_(std::move(sink)) {}

void TrackEncoder::append(const SampleBuffer& buffer, std::int64_t time) {
    if (!fitsTrack(buffer, encoder_.channels())) {
        throw std::runtime_error("The captured sound does not match the format of its track.");
    }
    const Placement placement = timeline_.place(time, buffer.frameCount);
    addSilence(placement.silence);
    add(placement.take, [&](int channel, std::int64_t first, std::span<float> into) {
        copySamples(buffer, channel, placement.skip + first, into);
    });
}

void TrackEncoder::fillTo(std::int64_t position) {
    addSilence(timeline_.fillTo(position));
    encodeWholePackets();
}

void TrackEncoder::finish() {
    encodeWholePackets();
    if (waiting_ > 0) {
        encode(waiting_);
    }
    encoder_.finish(sink_);
}

void TrackEncoder::addSilence(std::int64_t frames) {
    add(frames, [](int, std::int64_t, std::span<float> into) { std::ranges::fill(into, 0.0F); });
}

template <class Fill>
void TrackEncoder::add(std::int64_t frames, const Fill& fill) {
    for (std::int64_t done = 0; done < frames;) {
        const int place = waiting_ % packetFrames;
        const int count =
            static_cast<int>(std::min<std::int64_t>(packetFrames - place, frames - done));
        for (int channel = 0; channel < encoder_.channels(); ++channel) {
            fill(channel, done,
                 encoder_.plane(channel, waiting_ / packetFrames)
                     .subspan(static_cast<std::size_t>(place), static_cast<std::size_t>(count)));
        }
        done += count;
        waiting_ += count;
        if (waiting_ == batchFrames) {
            encodeWholePackets();
        }
    }
}

void TrackEncoder::encode(int frames) {
    for (; frames > 0; frames -= packetFrames) {
        const int count = std::min(packetFrames, frames);
        encoder_.encode(count, sink_);
        waiting_ -= count;
    }
}

void TrackEncoder::encodeWholePackets() {
    encode(waiting_ - (waiting_ % packetFrames));
}

} // namespace vantoro::media

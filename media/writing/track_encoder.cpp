// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/writing/track_encoder.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <stdexcept>

#include "media/coding/aac.h"
#include "media/writing/sample_conversion.h"

namespace vantoro::media {

TrackEncoder::TrackEncoder(const Coding& coding, int channels, int bitRate)
    : coder_(coding, channels, bitRate, batchPackets) {}

void TrackEncoder::append(const SampleBuffer& buffer, std::int64_t time, const PacketSink& sink) {
    if (!fitsTrack(buffer, coder_.channels())) {
        throw std::runtime_error("The captured sound does not match the format of its track.");
    }
    const Placement placement = timeline_.place(time, buffer.frameCount);
    addSilence(placement.silence, sink);
    add(
        placement.take,
        [&](int channel, std::int64_t first, std::span<float> into) {
            copySamples(buffer, channel, placement.skip + first, into);
        },
        sink);
}

void TrackEncoder::fillTo(std::int64_t position, const PacketSink& sink) {
    addSilence(timeline_.fillTo(position), sink);
    codeWholePackets(sink);
}

void TrackEncoder::finish(const PacketSink& sink) {
    codeWholePackets(sink);
    if (waiting_ > 0) {
        code(waiting_, sink);
    }
    coder_.finish(sink);
}

void TrackEncoder::addSilence(std::int64_t frames, const PacketSink& sink) {
    add(
        frames, [](int, std::int64_t, std::span<float> into) { std::ranges::fill(into, 0.0F); },
        sink);
}

template <class Fill>
void TrackEncoder::add(std::int64_t frames, const Fill& fill, const PacketSink& sink) {
    for (std::int64_t done = 0; done < frames;) {
        const int place = waiting_ % packetFrames;
        const int count =
            static_cast<int>(std::min<std::int64_t>(packetFrames - place, frames - done));
        for (int channel = 0; channel < coder_.channels(); ++channel) {
            fill(channel, done,
                 coder_.plane(channel, waiting_ / packetFrames)
                     .subspan(static_cast<std::size_t>(place), static_cast<std::size_t>(count)));
        }
        done += count;
        waiting_ += count;
        if (waiting_ == batchFrames) {
            codeWholePackets(sink);
        }
    }
}

void TrackEncoder::code(int frames, const PacketSink& sink) {
    for (; frames > 0; frames -= packetFrames) {
        const int count = std::min(packetFrames, frames);
        coder_.encode(count, sink);
        waiting_ -= count;
    }
}

void TrackEncoder::codeWholePackets(const PacketSink& sink) {
    code(waiting_ - (waiting_ % packetFrames), sink);
}

} // namespace vantoro::media

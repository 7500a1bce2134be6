// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/ffmpeg/track_encoder.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <stdexcept>

#include "platform/ffmpeg/aac.h"
#include "platform/ffmpeg/sample_conversion.h"

namespace vantoro::ffmpeg {

TrackEncoder::TrackEncoder(int channels, int bitRate)
    : coder_(channels, bitRate),
      batch_(static_cast<std::size_t>(channels) * static_cast<std::size_t>(batchFrames)) {}

void TrackEncoder::append(const SampleBuffer& buffer, std::int64_t time, const PacketSink& sink) {
    if (!fitsTrack(buffer, coder_.channels())) {
        throw std::runtime_error("The captured sound has a form that its track does not take.");
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
    if (filled_ > 0) {
        code(filled_, sink);
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
        const int count =
            static_cast<int>(std::min<std::int64_t>(batchFrames - filled_, frames - done));
        for (int channel = 0; channel < coder_.channels(); ++channel) {
            fill(channel, done,
                 batch(channel).subspan(static_cast<std::size_t>(filled_),
                                        static_cast<std::size_t>(count)));
        }
        done += count;
        filled_ += count;
        if (filled_ == batchFrames) {
            codeWholePackets(sink);
        }
    }
}

std::span<float> TrackEncoder::batch(int channel) noexcept {
    return std::span(batch_).subspan(static_cast<std::size_t>(channel) *
                                         static_cast<std::size_t>(batchFrames),
                                     static_cast<std::size_t>(batchFrames));
}

/// Codes the first frames of the batch, and moves the rest to its front.
void TrackEncoder::code(int frames, const PacketSink& sink) {
    for (int coded = 0; coded < frames; coded += packetFrames) {
        const int count = std::min(packetFrames, frames - coded);
        for (int channel = 0; channel < coder_.channels(); ++channel) {
            std::ranges::copy(batch(channel).subspan(static_cast<std::size_t>(coded),
                                                     static_cast<std::size_t>(count)),
                              coder_.plane(channel).begin());
        }
        coder_.encode(count, sink);
    }
    filled_ -= frames;
    for (int channel = 0; channel < coder_.channels(); ++channel) {
        const std::span<float> samples = batch(channel);
        std::ranges::copy(
            samples.subspan(static_cast<std::size_t>(frames), static_cast<std::size_t>(filled_)),
            samples.begin());
    }
}

void TrackEncoder::codeWholePackets(const PacketSink& sink) {
    code(filled_ - (filled_ % packetFrames), sink);
}

} // namespace vantoro::ffmpeg

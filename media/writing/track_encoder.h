// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <span>

#include "engine/sample_buffer.h"
#include "media/codec/aac_encoder.h"
#include "media/writing/track_timeline.h"

namespace vantoro::media {

/// Whether the buffer is consistent and fits a track of `channels` at 48 kHz.
bool fitsTrack(const SampleBuffer& buffer, int channels) noexcept;

/// Fills `into` with one channel's frames from `firstFrame` on, which the buffer must hold.
/// Replaces non-finite samples by silence: one would corrupt the encoder's later output.
void copySamples(const SampleBuffer& buffer, int channel, std::int64_t firstFrame,
                 std::span<float> into) noexcept;

/// Turns one track's timed buffers into packets without gaps. Gives the encoder whole packets only,
/// because it silently pads short ones, in batches of a second: one packet at a time takes half as
/// much time again, because the encoder's data has left the caches. Used by one thread at a time;
/// throws std::runtime_error on failure.
class TrackEncoder {
public:
    static constexpr int batchPackets = 47;
    static constexpr int batchFrames = batchPackets * packetFrames;

    TrackEncoder(const AacCodec& codec, int channels, int bitRate, PacketSink sink);

    const AacTrack& track() const noexcept { return encoder_.track(); }

    /// The track's end, in frames from the session's start.
    std::int64_t position() const noexcept { return timeline_.position(); }

    /// `time`: the buffer's first frame, in frames from the session's start.
    void append(const SampleBuffer& buffer, std::int64_t time);
    /// Encodes the waiting frames, except for a last incomplete packet.
    void encodeWholePackets();
    /// Adds silence up to `position` and encodes the whole packets.
    void fillTo(std::int64_t position);
    /// Encodes all remaining frames. No call may follow.
    void finish();

private:
    template <class Fill>
    void add(std::int64_t frames, const Fill& fill);
    void addSilence(std::int64_t frames);
    void encode(int frames);

    AacEncoder encoder_;
    const PacketSink sink_;
    TrackTimeline timeline_;
    int waiting_ = 0; // frames in the encoder's planes
};

} // namespace vantoro::media

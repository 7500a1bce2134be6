// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

#include "engine/sample_buffer.h"
#include "media/coding/aac.h"
#include "media/coding/aac_encoder.h"
#include "media/writing/track_timeline.h"

namespace vantoro::media {

/// Turns one track's timed buffers into one unbroken row of packets. The coder gets whole packets'
/// worth of frames only, since it silently pads a short one in mid-stream, and a second of them
/// at a time: one by one they cost half as much again, since what the coder needs has left the
/// caches meanwhile. Used by one thread at a time; throws std::runtime_error where it fails.
class TrackEncoder {
public:
    /// How many frames wait to be coded together, at most.
    static constexpr int batchPackets = 47;
    static constexpr int batchFrames = batchPackets * packetFrames;

    TrackEncoder(const Coding& coding, int channels, int bitRate);

    /// What a file has to say about the packets.
    const AacTrack& track() const noexcept { return coder_.track(); }

    /// Frames since the session's start that the track has by now.
    std::int64_t position() const noexcept { return timeline_.position(); }

    /// `time`: frames from the session's start to the buffer's first frame.
    void append(const SampleBuffer& buffer, std::int64_t time, const PacketSink& sink);
    /// Codes what waits, but for a last packet that is not whole yet.
    void codeWholePackets(const PacketSink& sink);
    /// Silence up to `position`, where the track is shorter. Every whole packet is handed over.
    void fillTo(std::int64_t position, const PacketSink& sink);
    /// Hands over all that is left. Nothing may follow.
    void finish(const PacketSink& sink);

private:
    template <class Fill>
    void add(std::int64_t frames, const Fill& fill, const PacketSink& sink);
    void addSilence(std::int64_t frames, const PacketSink& sink);
    void code(int frames, const PacketSink& sink);

    AacEncoder coder_;
    TrackTimeline timeline_;
    int waiting_ = 0; // frames that lie in the coder's planes
};

} // namespace vantoro::media

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

#include "engine/sample_buffer.h"
#include "media/coding/aac.h"
#include "media/coding/aac_encoder.h"
#include "media/writing/track_timeline.h"

namespace vantoro::media {

/// Turns one track's timed buffers into packets without gaps. Gives the coder whole packets only,
/// because it silently pads short ones, in batches of a second: one packet at a time takes half as
/// much time again, because the coder's data has left the caches. Used by one thread at a time;
/// throws std::runtime_error on failure.
class TrackEncoder {
public:
    /// The batch that is coded at once.
    static constexpr int batchPackets = 47;
    static constexpr int batchFrames = batchPackets * packetFrames;

    TrackEncoder(const Coding& coding, int channels, int bitRate);

    /// The file's description of the packets.
    const AacTrack& track() const noexcept { return coder_.track(); }

    /// The track's end, in frames from the session's start.
    std::int64_t position() const noexcept { return timeline_.position(); }

    /// `time`: the buffer's first frame, in frames from the session's start.
    void append(const SampleBuffer& buffer, std::int64_t time, const PacketSink& sink);
    /// Codes the waiting frames, except for a last incomplete packet.
    void codeWholePackets(const PacketSink& sink);
    /// Adds silence up to `position` and codes the whole packets.
    void fillTo(std::int64_t position, const PacketSink& sink);
    /// Codes all remaining frames. No call may follow.
    void finish(const PacketSink& sink);

private:
    template <class Fill>
    void add(std::int64_t frames, const Fill& fill, const PacketSink& sink);
    void addSilence(std::int64_t frames, const PacketSink& sink);
    void code(int frames, const PacketSink& sink);

    AacEncoder coder_;
    TrackTimeline timeline_;
    int waiting_ = 0; // frames in the coder's planes
};

} // namespace vantoro::media

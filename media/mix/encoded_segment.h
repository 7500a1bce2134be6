// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <stop_token>
#include <utility>
#include <vector>

#include "media/codec/aac_encoder.h"
#include "media/mix/mixer.h"

namespace vantoro::media {

// A mix is encoded in independent segments, so that several can be encoded in parallel. A segment's
// encoder begins earlier, to have settled when the segment begins, and continues past its end, so
// that the splicer can choose where to switch to the next encoder's packets. The borders are fixed:
// the same mix always gives the same file.

inline constexpr std::int64_t segmentPackets = 1408; ///< about 30 s
inline constexpr std::int64_t packetsAfterSegment = 8;

/// The packets of one segment, and those after it that overlap the next one.
struct EncodedSegment {
    std::int64_t firstPacket = 0; ///< its number in the mix
    std::vector<std::byte> bytes; ///< of all packets
    std::vector<std::uint32_t> sizes;
    /// Of the packet before the first one (a default for the first segment), then of each packet.
    std::vector<WindowEnds> windowEnds;

    std::int64_t endPacket() const noexcept {
        return firstPacket + static_cast<std::int64_t>(sizes.size());
    }
};

/// How many packets a mix of `frames` has, including the priming.
std::int64_t packetsOf(std::int64_t frames) noexcept;
/// How many segments a mix of `frames` has.
std::int64_t segmentsOf(std::int64_t frames) noexcept;

AacEncoder makeMixEncoder(const AacCodec& codec);

/// Encodes one segment, as far as the mix is available. Used by one thread; throws if a file cannot
/// be read or the encoder fails.
class SegmentEncoder {
public:
    /// The mix's end may still be unknown; its first block to encode must be available.
    SegmentEncoder(const AacCodec& codec, const Mix& mix, std::int64_t segment);

    /// Sets the end of a mix whose end was unknown.
    void setEnd(const Mix& mix) noexcept;

    /// Encodes the whole blocks within the mix's first `frames`, or up to the segment's end. Calls
    /// `packetDone` for each packet of the segment itself. Returns promptly on a stop request.
    void encode(std::int64_t frames, const std::stop_token& stop,
                const std::function<void()>& packetDone);

    bool isComplete() const noexcept { return nextPacket_ >= endPacket_; }

    EncodedSegment take() noexcept { return std::move(segment_); }

private:
    void keep(const AacPacket& packet);
    bool isAvailable(std::int64_t block, std::int64_t frames) const noexcept;

    std::int64_t frames_;     // in the mix
    EncodedSegment segment_;  // what is kept of the encoder's packets
    std::int64_t block_;      // the next one to encode
    std::int64_t nextPacket_; // of the encoder
    std::int64_t endPacket_;  // after the last one to keep
    Mixer mixer_;
    AacEncoder encoder_;
};

/// Joins segments, which are added in order.
class SegmentSplicer {
public:
    using Sink = std::function<void(std::span<const std::byte> packet)>;

    explicit SegmentSplicer(Sink sink) : sink_(std::move(sink)) {}

    /// Passes on the packets up to the place where both encoders' windows match as if one encoder
    /// had made the packets.
    void add(EncodedSegment segment);
    void finish();

private:
    void deliverUntil(std::int64_t packet);

    Sink sink_;
    EncodedSegment latest_;
    std::int64_t nextPacket_ = 0;
    std::size_t nextByte_ = 0; // its offset in the latest segment
};

} // namespace vantoro::media

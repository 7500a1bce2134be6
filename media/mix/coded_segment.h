// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <stop_token>
#include <utility>
#include <vector>

#include "media/coding/aac_encoder.h"
#include "media/mix/mixer.h"

namespace vantoro::media {

// A mix is coded in independent segments, so that several can be coded in parallel. A segment's
// coder begins earlier, to have settled when the segment begins, and continues past its end, so
// that the splicer can choose where to switch to the next coder's packets. The borders are fixed:
// the same mix always gives the same file.

inline constexpr std::int64_t segmentPackets = 1408; ///< about 30 s
inline constexpr std::int64_t packetsAfterSegment = 8;

/// The packets of one segment, and those after it that overlap the next one.
struct CodedSegment {
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

/// Makes a coder with the mix's parameters.
AacEncoder makeMixCoder(const Coding& coding);

/// Collects those of a coder's packets that its segment keeps.
class SegmentPackets {
public:
    /// `coderStart`: the number of the coder's first packet.
    SegmentPackets(std::int64_t segment, std::int64_t packetsOfMix, std::int64_t coderStart);

    bool areComplete() const noexcept { return next_ >= end_; }

    void add(const AacPacket& packet, const WindowEnds& ends);

    /// Sets the number of packets in the mix.
    void endAt(std::int64_t packetsOfMix) noexcept { end_ = std::min(end_, packetsOfMix); }

    CodedSegment take() noexcept { return std::move(segment_); }

private:
    CodedSegment segment_;
    std::int64_t next_; // the coder's next packet
    std::int64_t end_;  // after the last packet to keep
};

/// Codes one segment, as far as the mix is available. Used by one thread; throws if a file cannot
/// be read or the coder fails.
class SegmentCoder {
public:
    /// The mix's end may still be unknown; its first block to code must be available.
    SegmentCoder(const Coding& coding, const Mix& mix, std::int64_t segment);

    /// Sets the end of a mix whose end was unknown.
    void setEnd(const Mix& mix) noexcept;

    /// Codes the whole blocks within the mix's first `frames`, or up to the segment's end. Calls
    /// `packetDone` for each packet of the segment itself. Returns promptly on a stop request.
    void code(std::int64_t frames, const std::stop_token& stop,
              const std::function<void()>& packetDone);

    bool isComplete() const noexcept { return packets_.areComplete(); }

    CodedSegment take() noexcept { return packets_.take(); }

private:
    bool isAvailable(std::int64_t block, std::int64_t frames) const noexcept;

    std::int64_t frames_; // in the mix
    std::int64_t first_;  // the segment's first block
    std::int64_t block_;  // the next one to code
    Mixer mixer_;
    AacEncoder coder_;
    SegmentPackets packets_;
};

/// Codes one whole segment; after a stop request the result is incomplete.
CodedSegment codeSegment(const Coding& coding, const Mix& mix, std::int64_t segment,
                         const std::stop_token& stop, const std::function<void()>& packetDone);

/// The first packet to take from `after`, the segment that follows `before`: where both coders'
/// windows match as if one coder had made the packets.
std::int64_t splicePoint(const CodedSegment& before, const CodedSegment& after) noexcept;

/// Joins segments, which are added in order.
class SegmentSplicer {
public:
    using Sink = std::function<void(std::span<const std::byte> packet)>;

    explicit SegmentSplicer(Sink sink) : sink_(std::move(sink)) {}

    /// Passes on the packets up to the splice point.
    void add(CodedSegment segment);
    /// Passes on the remaining packets.
    void finish();

private:
    void deliverUntil(std::int64_t packet);

    Sink sink_;
    CodedSegment latest_;
    std::int64_t nextPacket_ = 0;
    std::size_t nextByte_ = 0; // its offset in the latest segment
};

} // namespace vantoro::media

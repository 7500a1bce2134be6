// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/mix/coded_segment.h"

#include <algorithm>
#include <utility>

#include "media/coding/aac.h"

namespace vantoro::media {

namespace {

constexpr int mixChannels = 2;
constexpr int mixBitRate = 256000;

} // namespace

std::int64_t packetsOf(std::int64_t frames) noexcept {
    return 1 + ((frames + packetFrames - 1) / packetFrames);
}

std::int64_t segmentsOf(std::int64_t frames) noexcept {
    return (packetsOf(frames) + segmentPackets - 1) / segmentPackets;
}

AacEncoder makeMixCoder(const Coding& coding) {
    return {coding, mixChannels, mixBitRate};
}

SegmentPackets::SegmentPackets(std::int64_t segment, std::int64_t packetsOfMix,
                               std::int64_t coderStart)
    : next_(coderStart),
      end_(std::min(packetsOfMix, ((segment + 1) * segmentPackets) + packetsAfterSegment)) {
    segment_.firstPacket = segment * segmentPackets;
    if (segment == 0) {
        segment_.windowEnds.emplace_back();
    }
    const auto count = static_cast<std::size_t>(end_ - segment_.firstPacket);
    segment_.sizes.reserve(count);
    segment_.windowEnds.reserve(count + 1);
}

void SegmentPackets::add(const AacPacket& packet, const WindowEnds& ends) {
    const std::int64_t number = next_++;
    if (number >= segment_.firstPacket - 1 && number < end_) {
        segment_.windowEnds.push_back(ends);
    }
    if (number >= segment_.firstPacket && number < end_) {
        const auto bytes = std::as_bytes(std::span(packet.bytes));
        segment_.bytes.insert(segment_.bytes.end(), bytes.begin(), bytes.end());
        segment_.sizes.push_back(static_cast<std::uint32_t>(bytes.size()));
    }
}

SegmentCoder::SegmentCoder(const Coding& coding, const Mix& mix, std::int64_t segment)
    : frames_(framesOf(mix)),
      first_(segment * segmentPackets),
      block_(std::max<std::int64_t>(0, first_ - packetsToSettle)),
      mixer_(coding, mix, block_),
      coder_(makeMixCoder(coding)),
      packets_(segment, packetsOf(frames_), block_) {}

void SegmentCoder::setEnd(const Mix& mix) noexcept {
    frames_ = framesOf(mix);
    mixer_.setEnd(mix);
    packets_.endAt(packetsOf(frames_));
}

void SegmentCoder::code(std::int64_t frames, const std::stop_token& stop,
                        const std::function<void()>& packetDone) {
    const PacketSink sink = [this](const AacPacket& packet) {
        packets_.add(packet, coder_.windowEnds());
    };
    for (; !isComplete() && isAvailable(block_, frames); ++block_) {
        if (stop.stop_requested()) {
            return;
        }
        mixer_.read({.left = coder_.plane(0).first<packetFrames>(),
                     .right = coder_.plane(1).first<packetFrames>()});
        const std::int64_t left = frames_ - (block_ * packetFrames);
        coder_.encode(static_cast<int>(std::min<std::int64_t>(packetFrames, left)), sink);
        if (block_ >= first_ && block_ < first_ + segmentPackets) {
            packetDone();
        }
    }
    if (!isComplete() && block_ * packetFrames >= frames_) {
        coder_.finish(sink);
    }
}

/// Whether a block is complete, or the mix's last.
bool SegmentCoder::isAvailable(std::int64_t block, std::int64_t frames) const noexcept {
    return (block + 1) * packetFrames <= frames ||
           (frames == frames_ && block * packetFrames < frames_);
}

CodedSegment codeSegment(const Coding& coding, const Mix& mix, std::int64_t segment,
                         const std::stop_token& stop, const std::function<void()>& packetDone) {
    SegmentCoder coder(coding, mix, segment);
    coder.code(framesOf(mix), stop, packetDone);
    return coder.take();
}

std::int64_t splicePoint(const CodedSegment& before, const CodedSegment& after) noexcept {
    const std::int64_t end = std::min(before.endPacket(), after.endPacket());
    for (std::int64_t packet = after.firstPacket; packet <= end; ++packet) {
        // Both start at the packet before their first one.
        const auto inBefore = static_cast<std::size_t>(packet - before.firstPacket);
        const auto inAfter = static_cast<std::size_t>(packet - after.firstPacket);
        if (before.windowEnds[inBefore] == after.windowEnds[inAfter]) {
            return packet;
        }
    }
    return after.firstPacket;
}

void SegmentSplicer::add(CodedSegment segment) {
    if (!latest_.sizes.empty()) {
        deliverUntil(splicePoint(latest_, segment));
    }
    latest_ = std::move(segment);
    const auto skipped =
        std::span(latest_.sizes).first(static_cast<std::size_t>(nextPacket_ - latest_.firstPacket));
    nextByte_ = 0;
    for (const std::uint32_t size : skipped) {
        nextByte_ += size;
    }
}

void SegmentSplicer::finish() {
    deliverUntil(latest_.endPacket());
}

void SegmentSplicer::deliverUntil(std::int64_t packet) {
    for (; nextPacket_ < packet; ++nextPacket_) {
        const std::uint32_t size =
            latest_.sizes[static_cast<std::size_t>(nextPacket_ - latest_.firstPacket)];
        sink_(std::span(latest_.bytes).subspan(nextByte_, size));
        nextByte_ += size;
    }
}

} // namespace vantoro::media

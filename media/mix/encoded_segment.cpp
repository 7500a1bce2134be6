// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/mix/encoded_segment.h"

#include <algorithm>
#include <utility>

#include "media/codec/aac.h"

namespace vantoro::media {

namespace {

constexpr int mixChannels = 2;
constexpr int mixBitRate = 256000;

/// The first packet to take from `after`, the segment that follows `before`.
std::int64_t splicePoint(const EncodedSegment& before, const EncodedSegment& after) noexcept {
    const std::int64_t end = std::min(before.endPacket(), after.endPacket());
    for (std::int64_t packet = after.firstPacket; packet <= end; ++packet) {
        // Both begin at the packet before their first one.
        const auto inBefore = static_cast<std::size_t>(packet - before.firstPacket);
        const auto inAfter = static_cast<std::size_t>(packet - after.firstPacket);
        if (before.windowEnds[inBefore] == after.windowEnds[inAfter]) {
            return packet;
        }
    }
    return after.firstPacket;
}

} // namespace

std::int64_t packetsOf(std::int64_t frames) noexcept {
    return 1 + ((frames + packetFrames - 1) / packetFrames);
}

std::int64_t segmentsOf(std::int64_t frames) noexcept {
    return (packetsOf(frames) + segmentPackets - 1) / segmentPackets;
}

AacEncoder makeMixEncoder(const AacCodec& codec) {
    return {codec, mixChannels, mixBitRate};
}

SegmentEncoder::SegmentEncoder(const AacCodec& codec, const Mix& mix, std::int64_t segment)
    : frames_(framesOf(mix)),
      segment_{.firstPacket = segment * segmentPackets, .bytes = {}, .sizes = {}, .windowEnds = {}},
      block_(std::max<std::int64_t>(0, segment_.firstPacket - packetsToSettle)),
      nextPacket_(block_),
      endPacket_(std::min(packetsOf(frames_),
                          segment_.firstPacket + segmentPackets + packetsAfterSegment)),
      mixer_(codec, mix, block_),
      encoder_(makeMixEncoder(codec)) {
    if (segment == 0) {
        segment_.windowEnds.emplace_back();
    }
    const auto count = static_cast<std::size_t>(endPacket_ - segment_.firstPacket);
    segment_.sizes.reserve(count);
    segment_.windowEnds.reserve(count + 1);
}

void SegmentEncoder::setEnd(const Mix& mix) noexcept {
    frames_ = framesOf(mix);
    mixer_.setEnd(mix);
    endPacket_ = std::min(endPacket_, packetsOf(frames_));
}

void SegmentEncoder::encode(std::int64_t frames, const std::stop_token& stop,
                            const std::function<void()>& packetDone) {
    const PacketSink sink = [this](const AacPacket& packet) { keep(packet); };
    for (; !isComplete() && isAvailable(block_, frames); ++block_) {
        if (stop.stop_requested()) {
            return;
        }
        mixer_.read({.left = encoder_.plane(0).first<packetFrames>(),
                     .right = encoder_.plane(1).first<packetFrames>()});
        const std::int64_t left = frames_ - (block_ * packetFrames);
        encoder_.encode(static_cast<int>(std::min<std::int64_t>(packetFrames, left)), sink);
        const std::int64_t done = block_ - segment_.firstPacket;
        if (done >= 0 && done < segmentPackets) {
            packetDone();
        }
    }
    if (!isComplete() && block_ * packetFrames >= frames_) {
        encoder_.finish(sink);
    }
}

void SegmentEncoder::keep(const AacPacket& packet) {
    const std::int64_t number = nextPacket_++;
    if (number >= segment_.firstPacket - 1 && number < endPacket_) {
        segment_.windowEnds.push_back(packet.windowEnds);
    }
    if (number >= segment_.firstPacket && number < endPacket_) {
        const auto bytes = std::as_bytes(std::span(packet.bytes));
        segment_.bytes.insert(segment_.bytes.end(), bytes.begin(), bytes.end());
        segment_.sizes.push_back(static_cast<std::uint32_t>(bytes.size()));
    }
}

/// Whether a block is complete, or the mix's last.
bool SegmentEncoder::isAvailable(std::int64_t block, std::int64_t frames) const noexcept {
    return (block + 1) * packetFrames <= frames ||
           (frames == frames_ && block * packetFrames < frames_);
}

void SegmentSplicer::add(EncodedSegment segment) {
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

// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/mix/coded_chunk.h"

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

std::int64_t chunksOf(std::int64_t frames) noexcept {
    return (packetsOf(frames) + chunkPackets - 1) / chunkPackets;
}

AacEncoder makeMixCoder(const Coding& coding) {
    return {coding, mixChannels, mixBitRate};
}

ChunkPackets::ChunkPackets(std::int64_t chunk, std::int64_t packetsOfMix, std::int64_t coderStart)
    : next_(coderStart),
      end_(std::min(packetsOfMix, ((chunk + 1) * chunkPackets) + packetsBehindChunk)) {
    chunk_.firstPacket = chunk * chunkPackets;
    if (chunk == 0) {
        chunk_.windowEnds.emplace_back();
    }
    const auto count = static_cast<std::size_t>(end_ - chunk_.firstPacket);
    chunk_.sizes.reserve(count);
    chunk_.windowEnds.reserve(count + 1);
}

void ChunkPackets::add(const AacPacket& packet, const WindowEnds& ends) {
    const std::int64_t number = next_++;
    if (number >= chunk_.firstPacket - 1 && number < end_) {
        chunk_.windowEnds.push_back(ends);
    }
    if (number >= chunk_.firstPacket && number < end_) {
        const auto bytes = std::as_bytes(std::span(packet.bytes));
        chunk_.bytes.insert(chunk_.bytes.end(), bytes.begin(), bytes.end());
        chunk_.sizes.push_back(static_cast<std::uint32_t>(bytes.size()));
    }
}

ChunkCoder::ChunkCoder(const Coding& coding, const Mix& mix, std::int64_t chunk)
    : frames_(framesOf(mix)),
      first_(chunk * chunkPackets),
      block_(std::max<std::int64_t>(0, first_ - packetsToSettle)),
      mixer_(coding, mix, block_),
      coder_(makeMixCoder(coding)),
      packets_(chunk, packetsOf(frames_), block_) {}

void ChunkCoder::endAs(const Mix& mix) noexcept {
    frames_ = framesOf(mix);
    mixer_.endAs(mix);
    packets_.endAt(packetsOf(frames_));
}

void ChunkCoder::code(std::int64_t frames, const std::stop_token& stop,
                      const std::function<void()>& packetDone) {
    const PacketSink sink = [this](const AacPacket& packet) {
        packets_.add(packet, coder_.windowEnds());
    };
    for (; !isComplete() && isThere(block_, frames); ++block_) {
        if (stop.stop_requested()) {
            return;
        }
        mixer_.read({.left = coder_.plane(0).first<packetFrames>(),
                     .right = coder_.plane(1).first<packetFrames>()});
        const std::int64_t left = frames_ - (block_ * packetFrames);
        coder_.encode(static_cast<int>(std::min<std::int64_t>(packetFrames, left)), sink);
        if (block_ >= first_ && block_ < first_ + chunkPackets) {
            packetDone();
        }
    }
    if (!isComplete() && block_ * packetFrames >= frames_) {
        coder_.finish(sink);
    }
}

/// Whether a block is whole, or the mix's last.
bool ChunkCoder::isThere(std::int64_t block, std::int64_t frames) const noexcept {
    return (block + 1) * packetFrames <= frames ||
           (frames == frames_ && block * packetFrames < frames_);
}

CodedChunk codeChunk(const Coding& coding, const Mix& mix, std::int64_t chunk,
                     const std::stop_token& stop, const std::function<void()>& packetDone) {
    ChunkCoder coder(coding, mix, chunk);
    coder.code(framesOf(mix), stop, packetDone);
    return coder.take();
}

std::int64_t splicePoint(const CodedChunk& before, const CodedChunk& after) noexcept {
    const std::int64_t end = std::min(before.endPacket(), after.endPacket());
    for (std::int64_t packet = after.firstPacket; packet <= end; ++packet) {
        // Both count from the packet before their first one.
        const auto inBefore = static_cast<std::size_t>(packet - before.firstPacket);
        const auto inAfter = static_cast<std::size_t>(packet - after.firstPacket);
        if (before.windowEnds[inBefore] == after.windowEnds[inAfter]) {
            return packet;
        }
    }
    return after.firstPacket;
}

void ChunkSplicer::add(CodedChunk chunk) {
    if (!latest_.sizes.empty()) {
        handOverUntil(splicePoint(latest_, chunk));
    }
    latest_ = std::move(chunk);
    const auto skipped =
        std::span(latest_.sizes).first(static_cast<std::size_t>(nextPacket_ - latest_.firstPacket));
    nextByte_ = 0;
    for (const std::uint32_t size : skipped) {
        nextByte_ += size;
    }
}

void ChunkSplicer::finish() {
    handOverUntil(latest_.endPacket());
}

void ChunkSplicer::handOverUntil(std::int64_t packet) {
    for (; nextPacket_ < packet; ++nextPacket_) {
        const std::uint32_t size =
            latest_.sizes[static_cast<std::size_t>(nextPacket_ - latest_.firstPacket)];
        sink_(std::span(latest_.bytes).subspan(nextByte_, size));
        nextByte_ += size;
    }
}

} // namespace vantoro::media

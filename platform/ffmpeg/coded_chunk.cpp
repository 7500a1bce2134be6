#include "platform/ffmpeg/coded_chunk.h"

#include <algorithm>
#include <utility>

#include "platform/ffmpeg/aac.h"

namespace vantoro::ffmpeg {

namespace {

constexpr int mixChannels = 2;
constexpr int mixBitRate = 256000;

/// Collects the packets that a chunk keeps, of all that its coder makes.
class Collector {
public:
    Collector(std::int64_t chunk, std::int64_t packetsOfMix, std::int64_t coderStart)
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

    bool isComplete() const noexcept { return next_ >= end_; }

    void add(const AVPacket& packet, const WindowEnds& ends) {
        const std::int64_t number = next_++;
        if (number >= chunk_.firstPacket - 1 && number < end_) {
            chunk_.windowEnds.push_back(ends);
        }
        if (number >= chunk_.firstPacket && number < end_) {
            const auto bytes =
                std::as_bytes(std::span(packet.data, static_cast<std::size_t>(packet.size)));
            chunk_.bytes.insert(chunk_.bytes.end(), bytes.begin(), bytes.end());
            chunk_.sizes.push_back(static_cast<std::uint32_t>(bytes.size()));
        }
    }

    CodedChunk take() { return std::move(chunk_); }

private:
    CodedChunk chunk_;
    std::int64_t next_; // number of the coder's next packet
    std::int64_t end_;  // behind the last one that is kept
};

} // namespace

std::int64_t packetsOf(std::int64_t frames) noexcept {
    return 1 + ((frames + packetFrames - 1) / packetFrames);
}

std::int64_t chunksOf(std::int64_t frames) noexcept {
    return (packetsOf(frames) + chunkPackets - 1) / chunkPackets;
}

AacEncoder makeMixCoder() {
    return {mixChannels, mixBitRate};
}

CodedChunk codeChunk(const Mix& mix, std::int64_t chunk, const std::stop_token& stop,
                     const std::function<void()>& packetDone) {
    const std::int64_t frames = framesOf(mix);
    const std::int64_t first = chunk * chunkPackets;
    const std::int64_t start = std::max<std::int64_t>(0, first - packetsBeforeChunk);
    Mixer mixer(mix, start);
    AacEncoder coder = makeMixCoder();
    Collector collector(chunk, packetsOf(frames), start);
    const PacketSink sink = [&](const AVPacket& packet) {
        collector.add(packet, coder.windowEnds());
    };
    std::int64_t block = start;
    for (; block * packetFrames < frames && !collector.isComplete() && !stop.stop_requested();
         ++block) {
        mixer.read({.left = coder.plane(0).first<packetFrames>(),
                    .right = coder.plane(1).first<packetFrames>()});
        const std::int64_t left = frames - (block * packetFrames);
        coder.encode(static_cast<int>(std::min<std::int64_t>(packetFrames, left)), sink);
        if (block >= first && block < first + chunkPackets) {
            packetDone();
        }
    }
    if (!collector.isComplete()) {
        coder.finish(sink);
    }
    return collector.take();
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

} // namespace vantoro::ffmpeg

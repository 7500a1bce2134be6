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

// A mix is coded in chunks that do not know of each other, so that several can be at once. A
// chunk's coder begins before the chunk, to be in its stride when it counts, and goes on behind its
// end, so that there are places to choose from where the one coder's packets can follow the
// other's. The borders depend on nothing: the same mix gives the same file, however it came about.

inline constexpr std::int64_t chunkPackets = 1408; ///< some 30 s
inline constexpr std::int64_t packetsBehindChunk = 8;

/// The packets of one chunk, and those behind it that the next one has too.
struct CodedChunk {
    std::int64_t firstPacket = 0; ///< its number in the whole mix
    std::vector<std::byte> bytes; ///< packet by packet
    std::vector<std::uint32_t> sizes;
    /// Of the packet before the first one (made up for the very first chunk), and then of each.
    std::vector<WindowEnds> windowEnds;

    std::int64_t endPacket() const noexcept {
        return firstPacket + static_cast<std::int64_t>(sizes.size());
    }
};

/// How many packets a mix of so many frames becomes: the priming, and each 1024 frames or less.
std::int64_t packetsOf(std::int64_t frames) noexcept;
/// How many chunks those are.
std::int64_t chunksOf(std::int64_t frames) noexcept;

/// How a mix is coded.
AacEncoder makeMixCoder(const Coding& coding);

/// The packets that a chunk keeps, of all that its coder makes.
class ChunkPackets {
public:
    /// `coderStart`: the number of the coder's first packet.
    ChunkPackets(std::int64_t chunk, std::int64_t packetsOfMix, std::int64_t coderStart);

    bool areComplete() const noexcept { return next_ >= end_; }

    void add(const AacPacket& packet, const WindowEnds& ends);

    /// There are only so many in the mix.
    void endAt(std::int64_t packetsOfMix) noexcept { end_ = std::min(end_, packetsOfMix); }

    CodedChunk take() noexcept { return std::move(chunk_); }

private:
    CodedChunk chunk_;
    std::int64_t next_; // number of the coder's next packet
    std::int64_t end_;  // behind the last one that is kept
};

/// Codes one chunk, as far as there is a mix. Used by one thread; throws when a file cannot be
/// read, or the coder fails.
class ChunkCoder {
public:
    /// Of a mix whose end may be unknown yet; the first block that is coded must be there.
    ChunkCoder(const Coding& coding, const Mix& mix, std::int64_t chunk);

    /// The mix, whose end was unknown, is this one.
    void endAs(const Mix& mix) noexcept;

    /// Codes what lies before so many frames of the mix, in whole blocks, or to the chunk's end.
    /// `packetDone` is told of each packet of the chunk itself. A stop is heeded at once.
    void code(std::int64_t frames, const std::stop_token& stop,
              const std::function<void()>& packetDone);

    bool isComplete() const noexcept { return packets_.areComplete(); }

    CodedChunk take() noexcept { return packets_.take(); }

private:
    bool isThere(std::int64_t block, std::int64_t frames) const noexcept;

    std::int64_t frames_; // of the mix
    std::int64_t first_;  // block of the chunk itself
    std::int64_t block_;  // next to be coded
    Mixer mixer_;
    AacEncoder coder_;
    ChunkPackets packets_;
};

/// Codes one chunk of a mix in one go; what is returned after a stop is of no use.
CodedChunk codeChunk(const Coding& coding, const Mix& mix, std::int64_t chunk,
                     const std::stop_token& stop, const std::function<void()>& packetDone);

/// The first packet to take from `after`, whose chunk follows on that of `before`: where the sound
/// of both coders' packets overlaps as if one coder had made them.
std::int64_t splicePoint(const CodedChunk& before, const CodedChunk& after) noexcept;

/// Puts chunks together, in their order.
class ChunkSplicer {
public:
    using Sink = std::function<void(std::span<const std::byte> packet)>;

    explicit ChunkSplicer(Sink sink) : sink_(std::move(sink)) {}

    /// Hands over what is certain by now.
    void add(CodedChunk chunk);
    /// Hands over the rest.
    void finish();

private:
    void handOverUntil(std::int64_t packet);

    Sink sink_;
    CodedChunk latest_;
    std::int64_t nextPacket_ = 0;
    std::size_t nextByte_ = 0; // where that one begins in the latest chunk
};

} // namespace vantoro::media

// SPDX-License-Identifier: GPL-3.0-or-later

// Gives the parser of unfinished movies arbitrary bytes, and checks its documented guarantees.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz/guarantee.h"
#include "fuzz/sparse_file.h"
#include "media/boxes/box_reader.h"
#include "media/codec/aac.h"
#include "media/movie/fragment_parser.h"
#include "media/movie/movie_scan.h"

namespace vantoro::fuzz {

namespace {

using media::packetFrames;

constexpr std::uint64_t maxTracks = 16;
constexpr std::uint64_t maxPackets = 65536; // of a track in a fragment
constexpr std::uint64_t maxPacketSize = 65536;
constexpr std::uint64_t maxHeaderSize = 1U << 20U;

/// How far to search for a fragment: past the bytes in memory, but not through all zeros.
constexpr std::uint64_t reach = 4096;

/// Limits the cost of one scan. The smallest whole fragment has 73 bytes, of which the last may be
/// a zero of the tail, and takes six reads: the header and the large size of two boxes, the
/// description, and the checksum. So does at most one fragment that is not whole. Before them the
/// scan reads up to 16 boxes and one header. Descriptions do not overlap, and none lies among the
/// zeros.
void allowScan(SparseFile& file) {
    constexpr std::uint64_t maxReadSize = 28; // of fixed size: a checksum with its box
    const std::uint64_t reads = 40 + (6 * (file.heldSize() / 72));
    file.allow(reads, (maxReadSize * reads) + maxHeaderSize + file.heldSize());
}

/// Limits the cost of a scan after damage: the search reads each byte once, except for names across
/// read boundaries. Every four bytes may look like a fragment, which takes seven reads to refuse,
/// and one more for the checksum; the bytes of these are limited together, except for one too many.
void allowDamageScan(SparseFile& file) {
    const std::uint64_t held = file.heldSize();
    const std::uint64_t reads = 40 + (9 * (held / 4));
    file.allow(reads, (28 * reads) + (2 * reach) + (6 * held));
}

void checkTracks(const std::vector<media::TrackHeader>& tracks) {
    require(tracks.size() <= maxTracks, "a movie has at most 16 tracks");
    for (auto track = tracks.begin(); track != tracks.end(); ++track) {
        require(std::ranges::count(tracks, track->id, &media::TrackHeader::id) == 1,
                "tracks can be told apart");
        require(!track->isAudio || track->timescale == media::framesPerSecond,
                "sound is timed in frames");
    }
}

struct ByteRange {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
};

/// Walks the packets of all fragments, as readers do.
class Walk {
public:
    Walk(SparseFile& file, const media::MovieScan& scan)
        : file_(file), scan_(scan), frames_(scan.tracks.size()), ended_(scan.tracks.size()) {}

    void run() {
        require(scan_.starts.size() == scan_.fragments.size() * scan_.tracks.size() &&
                    scan_.ends.size() == scan_.tracks.size(),
                "each track has a start in each fragment, and an end");
        require(scan_.headerEnd <= file_.size(), "the header lies inside the file");
        begin_ = scan_.headerEnd;
        endOfPackets_ = scan_.headerEnd;
        for (std::size_t index = 0; index < scan_.fragments.size(); ++index) {
            skipGap(scan_.startsOf(index), scan_.fragments[index]);
            walkFragment(scan_.fragments[index]);
        }
        require(scan_.skipped <= file_.size(), "what was skipped lies in the file");
        require(frames_ == scan_.ends, "tracks are as long as their packets");
    }

private:
    /// A track may have a gap where bytes were skipped, of at most the packets they could hold.
    void skipGap(std::span<const std::int64_t> starts, std::uint64_t offset) {
        constexpr std::uint64_t minPacketSize = 4;
        require(offset >= begin_, "fragments are in order");
        std::uint64_t missing = 0;
        for (std::size_t track = 0; track < frames_.size(); ++track) {
            require(starts[track] >= frames_[track], "a track never goes back");
            const std::int64_t gap = starts[track] - frames_[track];
            require(gap == 0 || (!ended_[track] && gap % packetFrames == 0),
                    "gaps are of whole packets");
            missing += static_cast<std::uint64_t>(gap / packetFrames);
            frames_[track] = starts[track];
        }
        require(missing * minPacketSize <= offset - begin_,
                "a gap is no longer than what the skipped bytes could have held");
    }

    void walkFragment(std::uint64_t offset) {
        require(offset >= endOfPackets_ && offset < file_.size(), "fragments do not overlap");
        allowScan(file_);
        // The scan found it whole, so this must not throw.
        const media::Fragment fragment = media::readFragment(file_, offset, scan_.tracks);
        require(fragment.contentEnd > offset && fragment.end >= fragment.contentEnd &&
                    fragment.end <= file_.size(),
                "a fragment lies inside the file");
        require(fragment.checksum.has_value() == (fragment.end > fragment.contentEnd),
                "a fragment ends after its checksum");
        begin_ = offset;
        endOfPackets_ = offset;

        std::vector<bool> seen(scan_.tracks.size());
        bool isEmpty = true;
        for (const media::TrackFragment& part : fragment.parts) {
            require(part.track < seen.size() && scan_.tracks[part.track].isAudio,
                    "only sound has packets");
            require(!seen[part.track], "a fragment holds a track once");
            seen[part.track] = true;
            isEmpty = isEmpty && part.packets.empty();
            walkPart(part, {.begin = offset, .end = fragment.contentEnd});
        }
        require(!isEmpty, "a fragment holds packets");
    }

    void walkPart(const media::TrackFragment& part, ByteRange fragment) {
        require(part.start == static_cast<std::uint64_t>(frames_[part.track]), "starts are exact");
        require(part.packets.size() <= maxPackets, "packets are not more than a recording has");
        std::uint64_t next = fragment.begin;
        for (const media::PacketPlace& packet : part.packets) {
            require(packet.size > 0 && packet.size <= maxPacketSize, "packets have a likely size");
            require(packet.offset >= next, "packets are in order");
            next = packet.offset + packet.size;
            endOfPackets_ = std::max(endOfPackets_, next);
            require(next <= fragment.end, "packets lie inside their fragment");
            require(packet.duration <= packetFrames && !ended_[part.track],
                    "only a track's last packet is short");
            ended_[part.track] = packet.duration < packetFrames;
            frames_[part.track] += packet.duration;
            readPacket(packet);
        }
    }

    /// Skips packets among the zeros, which would take too long.
    void readPacket(const media::PacketPlace& packet) {
        if (packet.offset < file_.heldSize()) {
            bytes_.resize(packet.size);
            file_.allow(1, packet.size);
            media::readExactly(file_, packet.offset, bytes_);
        }
    }

    SparseFile& file_;
    const media::MovieScan& scan_;
    std::uint64_t begin_ = 0;        // of the previous fragment
    std::uint64_t endOfPackets_ = 0; // in the previous fragment
    std::vector<std::int64_t> frames_;
    std::vector<bool> ended_;
    std::vector<std::byte> bytes_;
};

} // namespace

} // namespace vantoro::fuzz

// NOLINTNEXTLINE(readability-identifier-naming): the fuzzer's entry point
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vantoro;
    fuzz::SparseFile file(std::span(data, size));
    fuzz::allowScan(file);
    media::MovieScan scan;
    try {
        scan = media::scanMovie(file);
    } catch (const media::DamagedMovie&) {
        return 0;
    } // any other exception ends the process
    fuzz::checkTracks(scan.tracks);
    fuzz::Walk(file, scan).run();
    fuzz::allowDamageScan(file);
    media::scanAfterDamage(file, scan, fuzz::reach);
    fuzz::Walk(file, scan).run();
    return 0;
}

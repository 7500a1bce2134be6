// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/m4a/m4a_file.h"

#include <limits>
#include <stdexcept>
#include <utility>

#include "media/boxes/box_reader.h"
#include "media/m4a/m4a_index.h"
#include "media/movie/packet_reader.h"
#include "media/movie/stopping.h"

namespace vantoro::media {

namespace {

// Large enough that the number of writes does not matter.
constexpr std::size_t bufferSize = 1U << 20U;
constexpr std::size_t contentHeaderSize = 16;

} // namespace

M4aFile::M4aFile(OutputFile& file, AacTrack track, std::int64_t expectedFrames)
    : file_(file), track_(std::move(track)) {
    // Growing by doubling would take more memory than the table itself.
    const auto packets = (static_cast<std::size_t>(expectedFrames) / packetFrames) + 3;
    packetSizes_.reserve(packets);
    chunkOffsets_.reserve((packets / packetsPerChunk) + 1);
    buffer_.bytes(m4aFileType());
    contentStart_ = buffer_.size();
    constexpr std::uint32_t sizeIsLarge = 1;
    buffer_.u32(sizeIsLarge);
    buffer_.text("mdat");
    buffer_.u64(contentHeaderSize); // set by `finish`
}

void M4aFile::add(std::span<const std::byte> packet) {
    using Size = decltype(packetSizes_)::value_type; // a packet has at most 1536 bytes
    if (packet.size() > std::numeric_limits<Size>::max()) {
        throw std::runtime_error("A packet exceeds the size limit of AAC.");
    }
    if (packetSizes_.size() % packetsPerChunk == 0) {
        chunkOffsets_.push_back(written_ + buffer_.size());
    }
    packetSizes_.push_back(static_cast<Size>(packet.size()));
    put(packet);
}

void M4aFile::sync() {
    flush();
    file_.sync();
}

void M4aFile::finish(std::int64_t frames, const RecordingTags& tags) {
    const std::uint64_t contentEnd = written_ + buffer_.size();
    put(m4aIndex(track_, frames, packetSizes_.size(), chunkOffsets_, tags));
    for (const auto size : packetSizes_) {
        makeRoomFor(4);
        buffer_.u32(size);
    }
    flush();
    buffer_.u64(contentEnd - contentStart_);
    file_.writeAt(contentStart_ + 8, buffer_.take());
    file_.sync();
    file_.close();
}

void M4aFile::put(std::span<const std::byte> bytes) {
    makeRoomFor(bytes.size());
    buffer_.bytes(bytes);
}

void M4aFile::makeRoomFor(std::size_t bytes) {
    if (buffer_.size() + bytes > bufferSize) {
        flush();
    }
}

void M4aFile::flush() {
    const auto bytes = buffer_.take();
    file_.writeAt(written_, bytes);
    written_ += bytes.size();
}

void copyPackets(const std::shared_ptr<const Movie>& movie, std::size_t track, std::int64_t frames,
                 PacketRepair* repair, M4aFile& file, const ExportProgress& progress,
                 const std::stop_token& stop) {
    constexpr std::int64_t progressInterval = 1000;
    const std::int64_t count = 1 + ((frames + packetFrames - 1) / packetFrames);
    PacketReader packets(movie, track);
    packets.seek(0);
    for (std::int64_t done = 0; done < count; ++done) {
        const auto packet = packets.next();
        if (!packet || (packet->empty() && repair == nullptr)) {
            throw DamagedMovie("the file is shorter than before");
        }
        file.add(repair != nullptr ? repair->repaired(*packet) : *packet);
        if (done % progressInterval != 0) {
            continue;
        }
        throwIfStopped(stop);
        if (progress) {
            progress(static_cast<double>(done) / static_cast<double>(count));
        }
    }
}

} // namespace vantoro::media

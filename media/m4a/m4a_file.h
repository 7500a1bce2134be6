// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <stop_token>
#include <vector>

#include "engine/ports/file_system.h"
#include "engine/ports/recording.h"
#include "engine/ports/recording_tags.h"
#include "media/boxes/box_writer.h"
#include "media/codec/aac.h"
#include "media/m4a/packet_repair.h"
#include "media/movie/movie.h"

namespace vantoro::media {

/// Writes an M4A file with one AAC track, keeping two bytes per packet in memory.
/// Used by one thread; throws what the file throws.
class M4aFile {
public:
    /// `file` is empty and outlives this. `expectedFrames`: its length, if known.
    M4aFile(OutputFile& file, AacTrack track, std::int64_t expectedFrames = 0);

    /// Throws std::runtime_error if the packet is larger than AAC allows.
    void add(std::span<const std::byte> packet);
    /// Syncs the packets so far, so that `finish` has less to wait for.
    void sync();
    /// Writes the index after the packets, of which there must be at least one, syncs and closes
    /// the file. `frames`: audible frames, without priming and padding.
    void finish(std::int64_t frames, const RecordingTags& tags);

private:
    void put(std::span<const std::byte> bytes);
    void makeRoomFor(std::size_t bytes);
    void flush();

    OutputFile& file_;
    AacTrack track_;
    BoxWriter buffer_; // to be written
    std::uint64_t written_ = 0;
    std::uint64_t contentStart_ = 0; // offset of the packets' box
    std::vector<std::uint16_t> packetSizes_;
    std::vector<std::uint64_t> chunkOffsets_;
};

/// Copies the priming and the first `frames` of a movie's track without re-encoding: lossless, and
/// a fraction of a second for an hour. `repair` may be null if the movie is intact. Throws
/// DamagedMovie if the movie has changed, what either file throws, and
/// std::errc::operation_canceled on a stop request.
void copyPackets(const std::shared_ptr<const Movie>& movie, std::size_t track, std::int64_t frames,
                 PacketRepair* repair, M4aFile& file, const ExportProgress& progress,
                 const std::stop_token& stop);

} // namespace vantoro::media

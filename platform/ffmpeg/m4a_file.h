#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "engine/ports/file_system.h"
#include "platform/ffmpeg/m4a_index.h"

namespace vantoro::ffmpeg {

/// Writes an M4A file of one AAC track packet by packet, keeping four bytes of each in memory.
/// Used by one thread; throws what the file throws.
class M4aFile {
public:
    M4aFile(std::unique_ptr<OutputFile> file, M4aTrack track);

    void add(std::span<const std::byte> packet);
    /// Writes the index behind the packets, of which there is at least one; syncs and closes.
    void finish();

private:
    void put(std::span<const std::byte> bytes);
    void flush();

    std::unique_ptr<OutputFile> file_;
    M4aTrack track_;
    std::vector<std::byte> buffer_; // not yet written
    std::uint64_t written_ = 0;
    std::uint64_t contentStart_ = 0; // offset of the box of packets
    std::vector<std::uint32_t> packetSizes_;
    std::vector<std::uint64_t> chunkOffsets_;
};

} // namespace vantoro::ffmpeg

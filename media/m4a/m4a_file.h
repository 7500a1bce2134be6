// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "engine/ports/file_system.h"
#include "media/m4a/m4a_index.h"

namespace vantoro::media {

/// Writes an M4A file of one AAC track packet by packet, keeping two bytes of each in memory.
/// Used by one thread; throws what the file throws.
class M4aFile {
public:
    /// Into an empty file that outlives this. `expectedFrames`: how long it will be, so far as that
    /// is known.
    M4aFile(OutputFile& file, AacTrack track, std::int64_t expectedFrames = 0);

    /// Throws std::runtime_error where it is larger than any that AAC has.
    void add(std::span<const std::byte> packet);
    /// Brings the packets so far to the disk, so that less is left for the end.
    void sync();
    /// Writes the index behind the packets, of which there is at least one, syncs and closes the
    /// file. So many frames are to be heard of them: neither priming nor padding.
    void finish(std::int64_t frames);

private:
    void put(std::span<const std::byte> bytes);
    void flush();

    OutputFile& file_;
    AacTrack track_;
    std::vector<std::byte> buffer_; // not yet written
    std::uint64_t written_ = 0;
    std::uint64_t contentStart_ = 0; // offset of the box of packets
    std::vector<std::uint16_t> packetSizes_;
    std::vector<std::uint64_t> rowOffsets_;
};

} // namespace vantoro::media

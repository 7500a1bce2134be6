// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "engine/ports/recording_tags.h"
#include "media/codec/aac.h"

namespace vantoro::media {

/// Packets per chunk: each chunk has its offset in the index.
inline constexpr std::size_t packetsPerChunk = 64;

/// The file's first box.
std::vector<std::byte> m4aFileType();

/// The file's index up to the table of packet sizes, which the caller appends: `packetCount`
/// big-endian 32-bit numbers. `frames`: audible frames, without priming and padding. `packetCount`:
/// at least one. `chunkOffsets`: each chunk's offset in the file.
std::vector<std::byte> m4aIndex(const AacTrack& track, std::int64_t frames, std::size_t packetCount,
                                std::span<const std::uint64_t> chunkOffsets,
                                const RecordingTags& tags);

} // namespace vantoro::media

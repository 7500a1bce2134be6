// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "engine/ports/file_system.h"
#include "media/boxes/box_reader.h"

namespace vantoro::media {

// Behind each fragment lies a box of our own, which other readers skip: the checksum of all bytes
// of the fragment. It tells packets that can be copied unseen from damaged ones.

/// Where a checksum was found.
struct StoredChecksum {
    std::uint32_t value = 0;
    std::uint64_t end = 0; ///< offset behind its box
};

/// The box that belongs behind the fragment.
std::vector<std::byte> checksumBox(ByteSpan fragment);

/// The checksum that lies at `offset`; nothing where none lies whole. Throws what the file throws.
std::optional<StoredChecksum> readChecksum(const InputFile& file, std::uint64_t offset);

/// The sum of a file's bytes from `begin` to `end`. Throws DamagedMovie where the file ends before,
/// and what the file throws.
std::uint32_t checksumOf(const InputFile& file, std::uint64_t begin, std::uint64_t end);

/// The same sum, over bytes that come piece by piece.
class Checksum {
public:
    void add(ByteSpan bytes) noexcept;

    std::uint32_t value() const noexcept { return value_; }

private:
    std::uint32_t value_ = 0xFFFFFFFF; // not 0, or leading zeros would not count
};

} // namespace vantoro::media

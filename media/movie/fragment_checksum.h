// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "engine/ports/file_system.h"
#include "media/boxes/box_reader.h"

namespace vantoro::media {

// After each fragment comes a private box, which other readers skip: the checksum of the fragment's
// bytes. It detects damaged packets without decoding.

/// A checksum read from a file.
struct StoredChecksum {
    std::uint32_t value = 0;
    std::uint64_t end = 0; ///< offset after its box
};

/// The box to write after the fragment.
std::vector<std::byte> checksumBox(ByteSpan fragment);

/// The checksum at `offset`; nothing if there is no complete one. Throws what the file throws.
std::optional<StoredChecksum> readChecksum(const InputFile& file, std::uint64_t offset);

/// The checksum of a file's bytes from `begin` to `end`. Throws DamagedMovie if the file is
/// shorter, and what the file throws.
std::uint32_t checksumOf(const InputFile& file, std::uint64_t begin, std::uint64_t end);

/// Computes the checksum incrementally.
class Checksum {
public:
    void add(ByteSpan bytes) noexcept;

    std::uint32_t value() const noexcept { return value_; }

private:
    std::uint32_t value_ = 0xFFFFFFFF; // not 0, or leading zeros would not count
};

} // namespace vantoro::media

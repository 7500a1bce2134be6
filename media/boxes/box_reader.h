// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "engine/failure.h"
#include "engine/ports/file_system.h"

namespace vantoro::media {

/// The movie's bytes are invalid. The text is for the user.
class DamagedMovie : public Failure {
public:
    explicit DamagedMovie(const char* reason);
};

using ByteSpan = std::span<const std::byte>;

/// A box's type, from its four characters.
constexpr std::uint32_t boxType(const char (&name)[5]) noexcept {
    std::uint32_t type = 0;
    for (int i = 0; i < 4; ++i) {
        type = type << 8U | static_cast<std::uint8_t>(name[i]);
    }
    return type;
}

/// Reads consecutive big-endian numbers. Throws DamagedMovie at the end of the bytes.
class ByteReader {
public:
    explicit ByteReader(ByteSpan bytes) noexcept : rest_(bytes) {}

    std::uint8_t u8() { return static_cast<std::uint8_t>(number(1)); }

    std::uint16_t u16() { return static_cast<std::uint16_t>(number(2)); }

    std::uint32_t u32() { return static_cast<std::uint32_t>(number(4)); }

    std::uint64_t u64() { return number(8); }

    ByteSpan take(std::size_t count);

    void skip(std::size_t count) { take(count); }

    ByteSpan rest() const noexcept { return rest_; }

private:
    std::uint64_t number(std::size_t size);

    ByteSpan rest_;
};

struct Box {
    std::uint32_t type = 0;
    ByteSpan content;
};

class BoxReader {
public:
    explicit BoxReader(ByteSpan bytes) noexcept : bytes_(bytes) {}

    /// Nothing at the end. Throws DamagedMovie if a box exceeds its parent.
    std::optional<Box> next();

private:
    ByteReader bytes_;
};

/// The content of the first child box of a type; the bytes after it may be damaged. Throws as
/// BoxReader does.
std::optional<ByteSpan> findBox(ByteSpan content, std::uint32_t type);

struct FileBox {
    std::uint32_t type = 0;
    std::uint64_t content = 0; ///< offset after the box's header
    std::uint64_t end = 0;     ///< offset after the box, at most the file's size
};

/// The box at `offset`. Throws DamagedMovie if the file holds no complete box there, and what the
/// file throws.
FileBox readFileBox(const InputFile& file, std::uint64_t offset);

/// Fills the span. Throws DamagedMovie if the file ends too early.
void readExactly(const InputFile& file, std::uint64_t offset, std::span<std::byte> into);

} // namespace vantoro::media

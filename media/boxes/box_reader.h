// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "engine/failure.h"
#include "engine/ports/file_system.h"

namespace vantoro::media {

/// The bytes of a movie are not what they have to be. The text is for the user.
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

/// Reads big-endian numbers one after another. Throws DamagedMovie rather than read beyond.
class ByteReader {
public:
    explicit ByteReader(ByteSpan bytes) noexcept : rest_(bytes) {}

    std::uint8_t u8();
    std::uint16_t u16();
    std::uint32_t u32();
    std::uint64_t u64();
    ByteSpan take(std::size_t count);

    void skip(std::size_t count) { take(count); }

    ByteSpan rest() const noexcept { return rest_; }

private:
    std::uint32_t number(std::size_t size);

    ByteSpan rest_;
};

struct Box {
    std::uint32_t type = 0;
    ByteSpan content;
};

/// The boxes that lie one after another in the content of another one.
class BoxReader {
public:
    explicit BoxReader(ByteSpan bytes) noexcept : bytes_(bytes) {}

    /// Nothing at the end. Throws DamagedMovie for a box that does not lie inside.
    std::optional<Box> next();

private:
    ByteReader bytes_;
};

/// The content of the first box of a type in another one's content; what lies behind it may be
/// damaged. Throws DamagedMovie as BoxReader does.
std::optional<ByteSpan> findBox(ByteSpan content, std::uint32_t type);

/// Where a box lies in a file.
struct FileBox {
    std::uint32_t type = 0;
    std::uint64_t content = 0; ///< offset behind the box's own header
    std::uint64_t end = 0;     ///< offset behind the box; inside the file
};

/// The box at `offset`. Throws DamagedMovie where none lies whole inside the file; what the file
/// throws when it cannot be read.
FileBox readFileBox(const InputFile& file, std::uint64_t offset);

/// Reads exactly the span's bytes. Throws DamagedMovie where the file ends before.
void readExactly(const InputFile& file, std::uint64_t offset, std::span<std::byte> into);

} // namespace vantoro::media

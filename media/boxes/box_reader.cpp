// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/boxes/box_reader.h"

#include <array>
#include <string>

namespace vantoro::media {

DamagedMovie::DamagedMovie(const char* reason) : Failure(FailureCode::recordingDamaged, reason) {}

ByteSpan ByteReader::take(std::size_t count) {
    if (count > rest_.size()) {
        throw DamagedMovie("a box ends too early");
    }
    const ByteSpan taken = rest_.first(count);
    rest_ = rest_.subspan(count);
    return taken;
}

std::uint64_t ByteReader::number(std::size_t size) {
    std::uint64_t value = 0;
    for (const std::byte byte : take(size)) {
        value = value << 8U | std::to_integer<std::uint64_t>(byte);
    }
    return value;
}

std::optional<Box> BoxReader::next() {
    // QuickTime ends some box lists with a 32-bit zero.
    if (bytes_.rest().size() < 8) {
        return std::nullopt;
    }
    const std::uint32_t size = bytes_.u32();
    const std::uint32_t type = bytes_.u32();
    if (size < 8) {
        throw DamagedMovie("a box has an impossible size");
    }
    return Box{.type = type, .content = bytes_.take(size - 8)};
}

std::optional<ByteSpan> findBox(ByteSpan content, std::uint32_t type) {
    BoxReader boxes(content);
    while (const auto box = boxes.next()) {
        if (box->type == type) {
            return box->content;
        }
    }
    return std::nullopt;
}

FileBox readFileBox(const InputFile& file, std::uint64_t offset) {
    std::array<std::byte, 8> header{};
    readExactly(file, offset, header);
    ByteReader reader(header);
    std::uint64_t size = reader.u32();
    const std::uint32_t type = reader.u32();
    std::uint64_t headerSize = header.size();
    if (size == 1) { // the size follows in 64 bits
        std::array<std::byte, 8> largeSize{};
        readExactly(file, offset + headerSize, largeSize);
        size = ByteReader(largeSize).u64();
        headerSize += largeSize.size();
    }
    if (size < headerSize || size > file.size() - offset) {
        throw DamagedMovie("a box does not lie inside the file");
    }
    return {.type = type, .content = offset + headerSize, .end = offset + size};
}

void readExactly(const InputFile& file, std::uint64_t offset, std::span<std::byte> into) {
    if (offset > file.size() || file.readAt(offset, into) != into.size()) {
        throw DamagedMovie("it ends too early");
    }
}

} // namespace vantoro::media

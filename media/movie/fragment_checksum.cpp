// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/movie/fragment_checksum.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#include "media/boxes/box_writer.h"

namespace vantoro::media {

namespace {

// Distinguishes our box from others of type "uuid".
constexpr std::array<std::uint8_t, 16> identifier{0x5B, 0x3E, 0xA1, 0x0C, 0x77, 0x42, 0x4D, 0xE9,
                                                  0x9A, 0x16, 0xC8, 0x21, 0x0F, 0xD4, 0x63, 0xB8};
constexpr std::uint64_t boxSize = 8 + identifier.size() + 4;

// The remainders of each byte followed by 0 to 7 zero bytes.
constexpr std::size_t bytesAtOnce = 8;
using Remainders = std::array<std::array<std::uint32_t, 256>, bytesAtOnce>;

constexpr Remainders remainders = [] {
    constexpr std::uint32_t polynomial = 0xEDB88320;
    Remainders result{};
    for (std::uint32_t byte = 0; byte < 256; ++byte) {
        std::uint32_t rest = byte;
        for (int bit = 0; bit < 8; ++bit) {
            rest = (rest >> 1U) ^ ((rest & 1U) != 0 ? polynomial : 0U);
        }
        result[0][byte] = rest;
    }
    for (std::size_t zeros = 1; zeros < bytesAtOnce; ++zeros) {
        for (std::size_t byte = 0; byte < 256; ++byte) {
            const std::uint32_t before = result[zeros - 1][byte];
            result[zeros][byte] = (before >> 8U) ^ result[0][before & 0xFFU];
        }
    }
    return result;
}();

std::uint32_t littleEndian(std::span<const std::byte, 4> bytes) noexcept {
    std::uint32_t value = 0;
    for (std::size_t i = bytes.size(); i-- > 0;) {
        value = value << 8U | std::to_integer<std::uint32_t>(bytes[i]);
    }
    return value;
}

} // namespace

std::vector<std::byte> checksumBox(ByteSpan fragment) {
    Checksum sum;
    sum.add(fragment);
    BoxWriter writer;
    writer.box("uuid", [&] {
        writer.bytes(std::as_bytes(std::span(identifier)));
        writer.u32(sum.value());
    });
    return writer.take();
}

std::optional<StoredChecksum> readChecksum(const InputFile& file, std::uint64_t offset) {
    std::array<std::byte, boxSize> bytes{};
    if (file.readAt(offset, bytes) < bytes.size()) {
        return std::nullopt;
    }
    ByteReader fields(bytes);
    if (fields.u32() != boxSize || fields.u32() != boxType("uuid") ||
        !std::ranges::equal(fields.take(identifier.size()), std::as_bytes(std::span(identifier)))) {
        return std::nullopt;
    }
    return StoredChecksum{.value = fields.u32(), .end = offset + boxSize};
}

std::uint32_t checksumOf(const InputFile& file, std::uint64_t begin, std::uint64_t end) {
    constexpr std::uint64_t blockSize = 512U << 10U;
    std::vector<std::byte> block(std::min(blockSize, end - begin));
    Checksum sum;
    for (std::uint64_t offset = begin; offset < end;) {
        const auto part =
            std::span(block).first(std::min<std::uint64_t>(block.size(), end - offset));
        readExactly(file, offset, part);
        sum.add(part);
        offset += part.size();
    }
    return sum.value();
}

void Checksum::add(ByteSpan bytes) noexcept {
    const auto byteOf = [](std::uint32_t word, unsigned index) {
        return (word >> (8 * index)) & 0xFFU;
    };
    for (; bytes.size() >= bytesAtOnce; bytes = bytes.subspan(bytesAtOnce)) {
        const std::uint32_t low = value_ ^ littleEndian(bytes.first<4>());
        const std::uint32_t high = littleEndian(bytes.subspan<4, 4>());
        value_ = remainders[7][byteOf(low, 0)] ^ remainders[6][byteOf(low, 1)] ^
                 remainders[5][byteOf(low, 2)] ^ remainders[4][byteOf(low, 3)] ^
                 remainders[3][byteOf(high, 0)] ^ remainders[2][byteOf(high, 1)] ^
                 remainders[1][byteOf(high, 2)] ^ remainders[0][byteOf(high, 3)];
    }
    for (const std::byte byte : bytes) {
        value_ =
            (value_ >> 8U) ^ remainders[0][byteOf(value_, 0) ^ std::to_integer<unsigned>(byte)];
    }
}

} // namespace vantoro::media

// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/ffmpeg/fragment_checksum.h"

extern "C" {
#include <libavutil/crc.h>
}

#include <algorithm>
#include <array>
#include <span>

#include "platform/ffmpeg/box_writer.h"

namespace vantoro::ffmpeg {

namespace {

// What tells our box from others of type "uuid".
constexpr std::array<std::uint8_t, 16> identifier{0x5B, 0x3E, 0xA1, 0x0C, 0x77, 0x42, 0x4D, 0xE9,
                                                  0x9A, 0x16, 0xC8, 0x21, 0x0F, 0xD4, 0x63, 0xB8};
constexpr std::uint64_t boxSize = 8 + identifier.size() + 4;

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
    const AVCRC* const table = av_crc_get_table(AV_CRC_32_IEEE_LE);
    const void* const first = bytes.data();
    value_ = av_crc(table, value_, static_cast<const std::uint8_t*>(first), bytes.size());
}

} // namespace vantoro::ffmpeg

// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/boxes/elementary_stream.h"

namespace vantoro::media {

namespace {

namespace tag {
constexpr std::uint8_t stream = 3;
constexpr std::uint8_t decoder = 4;
constexpr std::uint8_t configuration = 5;
} // namespace tag

// Optional fields of a stream's descriptor.
namespace stream_flag {
constexpr unsigned dependence = 0x80;
constexpr unsigned location = 0x40;
constexpr unsigned clock = 0x20;
} // namespace stream_flag

/// Seven bits per byte; the highest bit means that another byte follows.
std::size_t takeLength(ByteReader& bytes) {
    constexpr int maxBytes = 4;
    std::size_t length = 0;
    for (int i = 0; i < maxBytes; ++i) {
        const unsigned byte = bytes.u8();
        length = length << 7U | (byte & 0x7fU);
        if (byte < 0x80U) {
            return length;
        }
    }
    throw DamagedMovie("a descriptor's length has no end");
}

/// The content of the next descriptor with this tag; skips those before it.
ByteSpan takeDescriptor(ByteReader& bytes, std::uint8_t tag) {
    for (;;) {
        const std::uint8_t found = bytes.u8();
        const ByteSpan content = bytes.take(takeLength(bytes));
        if (found == tag) {
            return content;
        }
    }
}

void skipStreamFields(ByteReader& bytes) {
    bytes.skip(2); // its number
    const unsigned flags = bytes.u8();
    if ((flags & stream_flag::dependence) != 0) {
        bytes.skip(2);
    }
    if ((flags & stream_flag::location) != 0) {
        bytes.skip(bytes.u8());
    }
    if ((flags & stream_flag::clock) != 0) {
        bytes.skip(2);
    }
}

/// A descriptor's tag and its length, always in four bytes.
void writeDescriptor(BoxWriter& out, std::uint8_t tag, std::uint64_t length) {
    out.u8(tag);
    for (const unsigned shift : {21U, 14U, 7U}) {
        out.u8(0x80U | ((length >> shift) & 0x7fU));
    }
    out.u8(length & 0x7fU);
}

} // namespace

ElementaryStream readElementaryStream(ByteSpan content) {
    ByteReader box(content);
    box.skip(4); // version and flags
    ByteReader stream(takeDescriptor(box, tag::stream));
    skipStreamFields(stream);
    ByteReader decoder(takeDescriptor(stream, tag::decoder));
    ElementaryStream result;
    result.objectType = decoder.u8();
    decoder.skip(8); // stream type, buffer size, maximum bit rate
    result.bitRate = decoder.u32();
    result.configuration = takeDescriptor(decoder, tag::configuration);
    return result;
}

void writeElementaryStream(BoxWriter& out, const AacTrack& track, std::uint64_t streamNumber,
                           std::uint64_t maxPacketBytes) {
    constexpr std::uint64_t header = 5;
    const std::uint64_t configuration = track.decoderConfiguration.size();
    const std::uint64_t decoder = 13 + header + configuration;
    const auto bitRate = static_cast<std::uint64_t>(track.bitRate);
    out.fullBox("esds", 0, [&] {
        writeDescriptor(out, 3, 3 + header + decoder + header + 1);
        out.u16(streamNumber);
        out.u8(0);
        writeDescriptor(out, 4, decoder);
        out.u8(0x40); // MPEG-4 audio
        out.u8(0x15); // audio stream
        out.u8(maxPacketBytes >> 16U);
        out.u16(maxPacketBytes);
        out.u32(bitRate); // maximum
        out.u32(bitRate); // average
        writeDescriptor(out, 5, configuration);
        out.bytes(track.decoderConfiguration);
        writeDescriptor(out, 6, 1);
        out.u8(2);
    });
}

} // namespace vantoro::media

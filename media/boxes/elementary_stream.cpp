// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/boxes/elementary_stream.h"

namespace vantoro::media {

namespace {

namespace tag {
constexpr std::uint8_t stream = 3;
constexpr std::uint8_t decoder = 4;
constexpr std::uint8_t configuration = 5;
} // namespace tag

// Which fields a stream's descriptor has before those in it.
namespace stream_flag {
constexpr unsigned dependence = 0x80;
constexpr unsigned location = 0x40;
constexpr unsigned clock = 0x20;
} // namespace stream_flag

/// Seven bits a byte, whose highest bit says that another one follows.
std::size_t takeLength(ByteReader& bytes) {
    constexpr int mostBytes = 4;
    std::size_t length = 0;
    for (int i = 0; i < mostBytes; ++i) {
        const unsigned byte = bytes.u8();
        length = length << 7U | (byte & 0x7fU);
        if (byte < 0x80U) {
            return length;
        }
    }
    throw DamagedMovie("a descriptor's length has no end");
}

/// The content of the next descriptor with this tag; those before it are passed over.
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

/// A descriptor's tag and the length of what follows, always in four bytes.
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
    result.coding = decoder.u8();
    decoder.skip(8); // kind of stream, most bytes a packet, most bits a second
    result.bitRate = decoder.u32();
    result.configuration = takeDescriptor(decoder, tag::configuration);
    return result;
}

void writeElementaryStream(BoxWriter& out, const AacTrack& track, std::uint64_t streamNumber,
                           std::uint64_t mostBytesAPacket) {
    constexpr std::uint64_t header = 5;
    const std::uint64_t configuration = track.coderConfiguration.size();
    const std::uint64_t coding = 13 + header + configuration;
    const auto bitRate = static_cast<std::uint64_t>(track.bitRate);
    out.fullBox("esds", 0, [&] {
        writeDescriptor(out, 3, 3 + header + coding + header + 1);
        out.u16(streamNumber);
        out.u8(0);
        writeDescriptor(out, 4, coding);
        out.u8(0x40); // MPEG-4 audio
        out.u8(0x15); // a stream of sound
        out.u8(mostBytesAPacket >> 16U);
        out.u16(mostBytesAPacket);
        out.u32(bitRate); // at most
        out.u32(bitRate); // on average
        writeDescriptor(out, 5, configuration);
        out.bytes(track.coderConfiguration);
        writeDescriptor(out, 6, 1);
        out.u8(2);
    });
}

} // namespace vantoro::media

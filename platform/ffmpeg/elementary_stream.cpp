// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/ffmpeg/elementary_stream.h"

namespace vantoro::ffmpeg {

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

} // namespace vantoro::ffmpeg

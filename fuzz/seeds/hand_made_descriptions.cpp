// SPDX-License-Identifier: GPL-3.0-or-later

#include "fuzz/seeds/hand_made_descriptions.h"

#include <cstddef>
#include <vector>

namespace vantoro::fuzz {

namespace {

using media::BoxWriter;

/// A descriptor of less than 128 bytes.
void writeDescriptor(BoxWriter& out, unsigned tag, unsigned lengthBytes, const Boxes& write) {
    BoxWriter content;
    write(content);
    const std::vector<std::byte> bytes = content.take();
    out.u8(tag);
    for (unsigned i = 1; i < lengthBytes; ++i) {
        out.u8(0x80);
    }
    out.u8(bytes.size());
    out.bytes(bytes);
}

void writeElementaryStream(BoxWriter& out, unsigned lengthBytes) {
    out.fullBox("esds", 0, [&] {
        writeDescriptor(out, 3, lengthBytes, [&](BoxWriter& stream) {
            stream.u16(1);
            stream.u8(0xe0); // all optional fields
            stream.zeros(5);
            writeDescriptor(stream, 4, lengthBytes, [&](BoxWriter& decoder) {
                decoder.u8(0x40);
                decoder.zeros(12);
                writeDescriptor(decoder, 5, lengthBytes,
                                [](BoxWriter& configuration) { configuration.u16(0x1190); });
            });
        });
    });
}

void writeNested(BoxWriter& out, unsigned depth, const Boxes& innermost) {
    if (depth == 0) {
        innermost(out);
        return;
    }
    out.box("wave", [&] { writeNested(out, depth - 1, innermost); });
}

} // namespace

Boxes describeSound(unsigned version, unsigned lengthBytes, unsigned depth) {
    return [=](BoxWriter& out) {
        out.box("mp4a", [&] {
            out.zeros(8);
            out.u16(version);
            out.zeros(version == 2 ? 54 : 18 + (version * 16));
            writeNested(out, depth,
                        [&](BoxWriter& inner) { writeElementaryStream(inner, lengthBytes); });
        });
    };
}

} // namespace vantoro::fuzz

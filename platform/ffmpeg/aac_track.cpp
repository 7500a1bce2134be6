// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/ffmpeg/aac_track.h"

#include <span>

namespace vantoro::ffmpeg {

namespace {

/// A descriptor's tag and the length of what follows, always in four bytes.
void writeDescriptor(BoxWriter& out, std::uint8_t tag, std::uint64_t length) {
    out.u8(tag);
    for (const unsigned shift : {21U, 14U, 7U}) {
        out.u8(0x80U | ((length >> shift) & 0x7fU));
    }
    out.u8(length & 0x7fU);
}

} // namespace

AacTrack describeTrack(const AVCodecParameters& parameters) {
    const auto configuration = std::as_bytes(
        std::span(parameters.extradata, static_cast<std::size_t>(parameters.extradata_size)));
    return {.channels = parameters.ch_layout.nb_channels,
            .bitRate = static_cast<int>(parameters.bit_rate),
            .coderConfiguration = {configuration.begin(), configuration.end()}};
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

} // namespace vantoro::ffmpeg

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

extern "C" {
#include <libavcodec/codec_par.h>
}

#include "platform/ffmpeg/box_writer.h"

namespace vantoro::ffmpeg {

/// What a file says about a track of AAC.
struct AacTrack {
    int channels = 2;
    int bitRate = 0;                           ///< bits a second
    std::vector<std::byte> coderConfiguration; ///< how the packets are to be decoded
};

/// Of packets with these parameters.
AacTrack describeTrack(const AVCodecParameters& parameters);

/// Writes the box that tells a decoder how the packets are coded.
void writeElementaryStream(BoxWriter& out, const AacTrack& track, std::uint64_t streamNumber,
                           std::uint64_t mostBytesAPacket);

} // namespace vantoro::ffmpeg

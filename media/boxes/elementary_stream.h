// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

#include "media/boxes/box_reader.h"
#include "media/boxes/box_writer.h"
#include "media/coding/aac_track.h"

namespace vantoro::media {

/// What a track says about its packets, for whoever is to decode them.
struct ElementaryStream {
    std::uint8_t coding = 0;   ///< number of the kind of coding
    std::uint32_t bitRate = 0; ///< bits a second, on average
    ByteSpan configuration;    ///< the decoder's, in a form of its own; lies in what was read
};

/// Reads the content of an `esds` box: descriptors in one another, to a fixed depth, of which none
/// is looked at twice. Throws DamagedMovie where one does not lie inside the one around it, or is
/// missing.
ElementaryStream readElementaryStream(ByteSpan content);

/// Writes the box that tells a decoder how the packets are coded.
void writeElementaryStream(BoxWriter& out, const AacTrack& track, std::uint64_t streamNumber,
                           std::uint64_t mostBytesAPacket);

} // namespace vantoro::media

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

#include "media/boxes/box_reader.h"
#include "media/boxes/box_writer.h"
#include "media/codec/aac.h"

namespace vantoro::media {

/// A track's decoder parameters.
struct ElementaryStream {
    std::uint8_t objectType = 0; ///< of the codec
    std::uint32_t bitRate = 0;   ///< bits per second, average
    ByteSpan configuration;      ///< decoder-specific; borrowed from the content read
};

/// Reads the content of an `esds` box: descriptors nested to a fixed depth, each visited once.
/// Throws DamagedMovie if one is missing or exceeds its parent.
ElementaryStream readElementaryStream(ByteSpan content);

void writeElementaryStream(BoxWriter& out, const AacTrack& track, std::uint64_t streamNumber,
                           std::uint64_t maxPacketBytes);

} // namespace vantoro::media

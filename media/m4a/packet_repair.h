// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "media/codec/aac_codec.h"

namespace vantoro::media {

/// Replaces a track's lost and undecodable packets by silent ones, so that a copy of the others
/// stays in step and plays everywhere. Used by one thread.
class PacketRepair {
public:
    /// `codec` outlives this. Throws std::runtime_error if silence cannot be encoded.
    PacketRepair(const AacCodec& codec, const AacTrack& track);

    /// The packet to write instead of the track's next one, which is empty if lost. Borrowed.
    std::span<const std::byte> repaired(std::span<const std::byte> packet);

private:
    std::unique_ptr<AacDecoder> decoder_;
    std::vector<std::byte> silence_;
};

} // namespace vantoro::media

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "media/coding/aac.h"
#include "media/coding/coding.h"
#include "media/movie/packet_reader.h"

namespace vantoro::media {

/// A stereo block of 1024 frames to add sound to.
struct StereoBlock {
    std::span<float, packetFrames> left;
    std::span<float, packetFrames> right;
};

/// Decodes a range of one track, from its beginning to its end.
/// Used by one thread at a time.
class TrackSamples {
public:
    /// `start`: frames from the track's beginning, without the priming. Throws as `addTo`.
    TrackSamples(const Coding& coding, const std::shared_ptr<const Movie>& movie, std::size_t track,
                 std::int64_t start, std::int64_t frames);

    /// Adds the next 1024 frames times `gain`, or the rest of the range; mono to both channels.
    /// Missing and undecodable packets are silent. Throws if the file cannot be read.
    void addTo(const StereoBlock& block, float gain);

    /// Ends the range after this many more frames.
    void setRemaining(std::int64_t frames) noexcept { remaining_ = frames; }

private:
    void loadPacket();

    PacketReader packets_;
    std::unique_ptr<AacDecoder> decoder_;
    std::int64_t remaining_;            // frames in the range
    std::optional<DecodedSound> sound_; // of the latest packet; none if silent
    int position_ = packetFrames;       // in that packet
};

} // namespace vantoro::media

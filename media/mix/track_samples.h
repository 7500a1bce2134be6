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

/// Where sound is summed: one packet's worth of two channels.
struct StereoBlock {
    std::span<float, packetFrames> left;
    std::span<float, packetFrames> right;
};

/// The decoded sound of a range of one track, read from its beginning to its end.
/// Used by one thread at a time.
class TrackSamples {
public:
    /// `start`: frames from the track's beginning (behind the priming). Throws as `addTo`.
    TrackSamples(const Coding& coding, const std::shared_ptr<const Movie>& movie, std::size_t track,
                 std::int64_t start, std::int64_t frames);

    /// Adds the next 1024 frames times `gain`, or what is left of the range; a mono track to both
    /// channels alike. Packets that cannot be decoded, or are missing, are silent. Throws when the
    /// file cannot be read.
    void addTo(const StereoBlock& block, float gain);

    /// The range ends after so many more frames.
    void endAfter(std::int64_t frames) noexcept { remaining_ = frames; }

private:
    void loadPacket();

    PacketReader packets_;
    std::unique_ptr<AacDecoder> decoder_;
    std::int64_t remaining_;            // frames of the range
    std::optional<DecodedSound> sound_; // of the latest packet; none where it is silent
    int position_ = packetFrames;       // in that packet
};

} // namespace vantoro::media

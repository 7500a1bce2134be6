// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "media/codec/aac_codec.h"
#include "media/movie/packet_reader.h"

namespace vantoro::media {

/// The length of a track whose end is not known yet.
inline constexpr std::int64_t unknownFrames = std::numeric_limits<std::int64_t>::max() / 2;

/// A movie's track and its volume in a mix.
struct MixedTrack {
    std::shared_ptr<const Movie> movie;
    std::size_t track = 0; ///< index in the scan
    std::int64_t frames = 0;
    float volume = 1;
};

/// Tracks that play together from time zero.
using Mix = std::vector<MixedTrack>;

/// The length of the longest track.
std::int64_t framesOf(const Mix& mix) noexcept;

struct StereoBlock {
    std::span<float, packetFrames> left;
    std::span<float, packetFrames> right;
};

/// Sums a mix's tracks at their volumes, mono on both channels, and clips the sum to full scale.
/// Missing and undecodable packets are silent. Used by one thread at a time; several mixers may
/// share a mix. Throws if a file cannot be read.
class Mixer {
public:
    /// Starts at frame `block` × 1024 of the mix.
    Mixer(const AacCodec& codec, const Mix& mix, std::int64_t block);

    /// The next 1024 frames; an ended track is silent.
    void read(const StereoBlock& block);

    /// Sets the ends of tracks whose ends were unknown; they lie after what was read.
    void setEnd(const Mix& mix) noexcept;

private:
    struct Track {
        PacketReader packets;
        std::unique_ptr<AacDecoder> decoder;
        std::int64_t frames;
        float volume;

        std::optional<DecodedSound> decodeNext();
    };

    std::vector<Track> tracks_; // those that have not ended before the start
    std::int64_t position_;     // in frames
};

} // namespace vantoro::media

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "media/movie/fragment_parser.h"
#include "media/movie/movie.h"

namespace vantoro::media {

/// Reads the packets of one track one after another, from any one on, with the same little memory
/// however long the track is. Used by one thread at a time; several may read one movie.
class PacketReader {
public:
    PacketReader(std::shared_ptr<const Movie> movie, std::size_t track);

    /// The next packet to be read is the one of this number, the priming being number 0.
    /// Throws as `next`.
    void seek(std::int64_t packet);

    /// Valid until the next call; empty for a packet that damage has taken, nothing behind the last
    /// one. Throws DamagedMovie when the file has changed since it was scanned, and what the file
    /// throws when it cannot be read.
    std::optional<std::span<const std::byte>> next();

private:
    void load(std::size_t fragment);

    std::shared_ptr<const Movie> movie_;
    std::size_t track_;
    std::size_t nextFragment_ = 0;
    std::vector<PacketPlace> places_; // of the fragment before that
    std::int64_t firstPacket_ = 0;    // number of the first of these
    std::int64_t nextPacket_ = 0;
    std::vector<std::byte> window_; // a piece of the file, read ahead
    std::uint64_t windowOffset_ = 0;
};

} // namespace vantoro::media

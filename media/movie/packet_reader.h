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

/// Reads consecutive packets of one track, from any packet on. Memory does not depend on the
/// track's length. Used by one thread at a time; several readers may share a movie.
class PacketReader {
public:
    PacketReader(std::shared_ptr<const Movie> movie, std::size_t track);

    /// Makes `next` return this packet; the priming is packet 0. Throws as `next`.
    void seek(std::int64_t packet);

    /// The next packet, valid until the next call; empty for a packet lost to damage, nothing at
    /// the end. Throws DamagedMovie if the file has changed since the scan, and what the file
    /// throws.
    std::optional<std::span<const std::byte>> next();

private:
    void load(std::size_t fragment);

    std::shared_ptr<const Movie> movie_;
    std::size_t track_;
    std::size_t nextFragment_ = 0;
    std::vector<PacketPlace> places_; // of the fragment before `nextFragment_`
    std::int64_t firstPacket_ = 0;    // number of the first of `places_`
    std::int64_t nextPacket_ = 0;
    std::vector<std::byte> window_; // a part of the file, read ahead
    std::uint64_t windowOffset_ = 0;
};

} // namespace vantoro::media

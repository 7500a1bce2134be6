// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/movie/packet_reader.h"

#include <algorithm>
#include <utility>

#include "media/boxes/box_reader.h"
#include "media/codec/aac.h"

namespace vantoro::media {

namespace {

// Holds a track's ten-second fragment, so that one read suffices.
constexpr std::uint64_t windowSize = 512U << 10U;

} // namespace

PacketReader::PacketReader(std::shared_ptr<const Movie> movie, std::size_t track)
    : movie_(std::move(movie)), track_(track) {}

void PacketReader::seek(std::int64_t packet) {
    const MovieScan& scan = movie_->scan;
    const std::int64_t frame = packet * packetFrames;
    // The last fragment that begins at or before the packet.
    std::size_t begin = 0;
    std::size_t end = scan.fragments.size();
    while (end - begin > 1) {
        const std::size_t middle = begin + ((end - begin) / 2);
        (scan.startsOf(middle)[track_] <= frame ? begin : end) = middle;
    }
    nextPacket_ = packet;
    nextFragment_ = begin;
    places_.clear();
    firstPacket_ = packet;
}

std::optional<std::span<const std::byte>> PacketReader::next() {
    while (nextPacket_ >= firstPacket_ + static_cast<std::int64_t>(places_.size())) {
        if (nextFragment_ == movie_->scan.fragments.size()) {
            return std::nullopt;
        }
        load(nextFragment_);
    }
    const std::int64_t index = nextPacket_++ - firstPacket_;
    if (index < 0) {
        return std::span<const std::byte>();
    }
    const PacketPlace& place = places_[static_cast<std::size_t>(index)];
    if (place.offset < windowOffset_ ||
        place.offset + place.size > windowOffset_ + window_.size()) {
        const PacketPlace& last = places_.back();
        const std::uint64_t end = std::max(last.offset + last.size, place.offset + place.size);
        window_.resize(std::min(windowSize, end - place.offset));
        windowOffset_ = place.offset;
        readExactly(*movie_->file, windowOffset_, window_);
    }
    return std::span(window_).subspan(place.offset - windowOffset_, place.size);
}

void PacketReader::load(std::size_t fragment) {
    const MovieScan& scan = movie_->scan;
    places_.clear();
    firstPacket_ = scan.startsOf(fragment)[track_] / packetFrames;
    for (TrackFragment& part :
         readFragment(*movie_->file, scan.fragments[fragment], scan.tracks).parts) {
        if (part.track == track_) {
            places_.insert(places_.end(), part.packets.begin(), part.packets.end());
        }
    }
    nextFragment_ = fragment + 1;
}

} // namespace vantoro::media

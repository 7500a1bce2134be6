// SPDX-License-Identifier: GPL-3.0-or-later

// Opens arbitrary bytes as an unfinished movie, and reads each track's codec and packets, in order
// and from the middle on.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include "fuzz/guarantee.h"
#include "fuzz/sparse_file.h"
#include "media/codec/aac.h"
#include "media/movie/movie.h"
#include "media/movie/movie_scan.h"
#include "media/movie/packet_reader.h"

namespace vantoro::fuzz {

namespace {

using media::Movie;
using media::PacketReader;

using Bytes = std::vector<std::byte>;

constexpr std::uint64_t unlimited = ~std::uint64_t{0};

/// Null if refused, which must be with the documented exception.
std::shared_ptr<const Movie> open(std::unique_ptr<SparseFile> file) {
    auto movie = std::make_shared<Movie>();
    const std::uint64_t size = file->size();
    file->allow(unlimited, unlimited);
    movie->file = std::move(file);
    try {
        movie->scan = media::scanMovie(*movie->file);
        media::scanAfterDamage(*movie->file, movie->scan);
        movie->codecs = media::readCodecs(movie->scan);
    } catch (const std::runtime_error&) {
        return nullptr;
    }
    require(movie->codecs.size() == movie->scan.tracks.size(), "each track has its place");
    for (const auto& codec : movie->codecs) {
        require(!codec || (codec->channels > 0 && codec->decoderConfiguration.size() > 1 &&
                           codec->decoderConfiguration.size() < size),
                "what a track's decoder is told lies in the file");
    }
    return movie;
}

std::vector<Bytes> readTrack(const std::shared_ptr<const Movie>& movie, std::size_t track) {
    std::vector<Bytes> packets;
    PacketReader reader(movie, track);
    while (const auto packet = reader.next()) {
        require(!packet->empty() || movie->scan.skipped > 0, "only damage takes packets");
        packets.emplace_back(packet->begin(), packet->end());
    }
    return packets;
}

void checkTrack(const std::shared_ptr<const Movie>& movie, SparseFile& file, std::size_t track) {
    // Each byte is read once, except for packets that exceeded the read-ahead; descriptions and
    // their two boxes' headers are read once too.
    const std::uint64_t size = file.size();
    file.allow((2 * size) + 1, 3 * size);
    const std::vector<Bytes> packets = readTrack(movie, track);

    const auto count = static_cast<std::int64_t>(packets.size());
    const std::int64_t frames = movie->scan.ends[track];
    require(frames <= count * media::packetFrames &&
                (count == 0 || frames >= (count - 1) * media::packetFrames),
            "a track's packets are as many as its length takes");

    file.allow(unlimited, unlimited);
    PacketReader reader(movie, track);
    for (const std::int64_t number : {count / 2, count - 1, std::int64_t{0}, count}) {
        if (number < 0) {
            continue;
        }
        reader.seek(number);
        const auto packet = reader.next();
        require(
            packet.has_value() == (number < count) &&
                (!packet || std::ranges::equal(*packet, packets[static_cast<std::size_t>(number)])),
            "a packet is found by its number");
    }
}

} // namespace

} // namespace vantoro::fuzz

// NOLINTNEXTLINE(readability-identifier-naming): the fuzzer's entry point
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vantoro;
    std::vector<std::uint8_t> input(data, data + size);
    if (!input.empty()) {
        input.front() = 0; // no zeros, which would all be read as packets
    }
    auto owned = std::make_unique<fuzz::SparseFile>(input);
    fuzz::SparseFile& file = *owned;
    if (const auto movie = fuzz::open(std::move(owned))) {
        for (std::size_t track = 0; track < movie->scan.tracks.size(); ++track) {
            if (movie->scan.tracks[track].isAudio) {
                fuzz::checkTrack(movie, file, track);
            }
        }
    }
    return 0;
}

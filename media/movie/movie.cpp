// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/movie/movie.h"

#include <algorithm>
#include <exception>

#include "media/boxes/box_reader.h"
#include "media/codec/aac.h"
#include "media/movie/fragment_checksum.h"
#include "media/movie/fragment_parser.h"
#include "media/movie/movie_scan.h"
#include "media/movie/stopping.h"

namespace vantoro::media {

std::shared_ptr<Movie> openMovie(FileSystem& fileSystem, const std::filesystem::path& location) {
    auto movie = openGrowingMovie(fileSystem, location);
    scanAfterDamage(*movie->file, movie->scan);
    return movie;
}

std::shared_ptr<Movie> openGrowingMovie(FileSystem& fileSystem,
                                        const std::filesystem::path& location) {
    auto movie = std::make_shared<Movie>();
    movie->location = location;
    movie->file = fileSystem.open(location);
    movie->scan = scanMovie(*movie->file);
    movie->codecs = readCodecs(movie->scan);
    for (std::size_t index = 0; index < movie->codecs.size(); ++index) {
        if (movie->scan.tracks[index].isAudio && !movie->codecs[index]) {
            throw DamagedMovie("a track is not coded as AAC");
        }
    }
    return movie;
}

bool isIntact(const Movie& movie, const std::stop_token& stop) {
    return movie.scan.skipped == 0 &&
           std::ranges::all_of(movie.scan.fragments, [&](std::uint64_t begin) {
               throwIfStopped(stop);
               const Fragment fragment = readFragment(*movie.file, begin, movie.scan.tracks);
               return fragment.checksum == checksumOf(*movie.file, begin, fragment.contentEnd);
           });
}

bool isUnbroken(const Movie& movie) noexcept {
    try {
        return movie.scan.skipped == 0 && endsWithLastFragment(*movie.file, movie.scan);
    } catch (const std::exception&) {
        return false;
    }
}

bool isWhole(const Movie& movie) noexcept {
    try {
        return isUnbroken(movie) && isIntact(movie, {});
    } catch (const std::exception&) {
        return false;
    }
}

std::vector<std::size_t> audioTracks(const Movie& movie) {
    std::vector<std::size_t> tracks;
    for (std::size_t index = 0; index < movie.scan.tracks.size(); ++index) {
        if (movie.scan.tracks[index].isAudio && !movie.scan.fragments.empty()) {
            tracks.push_back(index);
        }
    }
    return tracks;
}

std::int64_t framesIn(const Movie& movie, std::size_t track) {
    return std::max<std::int64_t>(movie.scan.ends[track] - primingFrames, 0);
}

} // namespace vantoro::media

// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/movie/movie_asset.h"

#include <algorithm>
#include <exception>

#include "media/boxes/box_reader.h"
#include "media/coding/aac.h"
#include "media/movie/fragment_checksum.h"
#include "media/movie/fragment_parser.h"
#include "media/movie/movie_codecs.h"
#include "media/movie/stopping.h"

namespace vantoro::media {

std::shared_ptr<Movie> openMovie(FileSystem& fileSystem, const std::filesystem::path& location) {
    auto movie = openGrowingMovie(fileSystem, location);
    scanBehindDamage(*movie->file, movie->scan);
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

TimeRange MovieTrack::timeRange() const {
    const std::int64_t frames =
        std::max<std::int64_t>(movie_->scan.ends[index_] - primingFrames, 0);
    return {.start = {.value = 0, .timescale = framesPerSecond},
            .duration = {.value = frames, .timescale = framesPerSecond}};
}

std::vector<std::shared_ptr<const AssetTrack>> MovieAsset::audioTracks() {
    std::vector<std::shared_ptr<const AssetTrack>> tracks;
    for (std::size_t index = 0; index < movie_->scan.tracks.size(); ++index) {
        if (movie_->scan.tracks[index].isAudio && !movie_->scan.fragments.empty()) {
            tracks.push_back(std::make_shared<MovieTrack>(movie_, index));
        }
    }
    return tracks;
}

MediaTime MovieAsset::duration() {
    MediaTime longest;
    for (const auto& track : audioTracks()) {
        const MediaTime duration = track->timeRange().duration;
        longest = longest.isValid() ? std::max(longest, duration, std::less<>()) : duration;
    }
    return longest;
}

bool MovieAsset::isWhole() noexcept {
    try {
        return movie_->scan.skipped == 0 && endsWithItsFragments(*movie_->file, movie_->scan) &&
               (origin_ == Origin::written || isIntact(*movie_, {}));
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace vantoro::media

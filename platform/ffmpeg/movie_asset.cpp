// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/ffmpeg/movie_asset.h"

#include <algorithm>

#include "platform/ffmpeg/aac.h"
#include "platform/ffmpeg/box_reader.h"
#include "platform/ffmpeg/movie_codecs.h"

namespace vantoro::ffmpeg {

std::shared_ptr<Movie> openMovie(FileSystem& fileSystem, const std::filesystem::path& location) {
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

} // namespace vantoro::ffmpeg

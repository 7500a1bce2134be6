// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <utility>
#include <vector>

#include "engine/ports/file_system.h"
#include "engine/ports/media_toolkit.h"
#include "platform/ffmpeg/handles.h"
#include "platform/ffmpeg/movie_scan.h"

namespace vantoro::ffmpeg {

/// A movie opened for reading. Where it does not grow, any number of threads may read from it.
struct Movie {
    std::filesystem::path location;
    std::unique_ptr<InputFile> file;
    MovieScan scan;
    std::vector<ParametersHandle> codecs; ///< as `readCodecs` gives them
};

/// Throws DamagedMovie where there is no movie, or one that nobody here has written; what the file
/// system throws when the file cannot be read.
std::shared_ptr<Movie> openMovie(FileSystem& fileSystem, const std::filesystem::path& location);

/// One audio track of a movie, whose time begins behind the coder's priming.
class MovieTrack final : public AssetTrack {
public:
    MovieTrack(std::shared_ptr<const Movie> movie, std::size_t index)
        : movie_(std::move(movie)), index_(index) {}

    TimeRange timeRange() const override;

    const std::shared_ptr<const Movie>& movie() const noexcept { return movie_; }

    std::size_t index() const noexcept { return index_; }

private:
    std::shared_ptr<const Movie> movie_;
    std::size_t index_; // in the scan
};

/// What is whole in a movie of fragments, be it finished or not.
class MovieAsset final : public Asset {
public:
    explicit MovieAsset(std::shared_ptr<const Movie> movie) : movie_(std::move(movie)) {}

    std::vector<std::shared_ptr<const AssetTrack>> audioTracks() override;
    MediaTime duration() override;

private:
    std::shared_ptr<const Movie> movie_;
};

} // namespace vantoro::ffmpeg

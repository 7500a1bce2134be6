// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <stop_token>
#include <utility>
#include <vector>

#include "engine/ports/file_system.h"
#include "engine/ports/media_toolkit.h"
#include "media/coding/aac_track.h"
#include "media/movie/movie_scan.h"

namespace vantoro::media {

/// A movie opened for reading. Where it does not grow, any number of threads may read from it.
struct Movie {
    std::filesystem::path location;
    std::unique_ptr<InputFile> file;
    MovieScan scan;
    std::vector<std::optional<AacTrack>> codecs; ///< as `readCodecs` gives them
};

/// A movie that nobody writes any more, with what is whole in it. Throws DamagedMovie where there
/// is no movie, or one that nobody here has written; what the file system throws when the file
/// cannot be read.
std::shared_ptr<Movie> openMovie(FileSystem& fileSystem, const std::filesystem::path& location);

/// The same for a movie that may still be written: only what lies before anything that is not
/// whole.
std::shared_ptr<Movie> openGrowingMovie(FileSystem& fileSystem,
                                        const std::filesystem::path& location);

/// Whether every byte of the movie's fragments is as it was written, and none is missing between
/// them. Reads them all, which takes a small part of the time of decoding them. Throws when the
/// file cannot be read, and when a stop is requested std::errc::operation_canceled.
bool isIntact(const Movie& movie, const std::stop_token& stop);

/// One audio track of a movie, whose time begins behind the coder's priming. Where damage has taken
/// packets from it, it is silent for as long as they were.
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
    /// Who has put a movie's bytes where they are read from.
    enum class Origin : std::uint8_t {
        unknown,
        written, ///< we have, just now, and have looked at each fragment since
    };

    explicit MovieAsset(std::shared_ptr<const Movie> movie, Origin origin = Origin::unknown)
        : movie_(std::move(movie)), origin_(origin) {}

    std::vector<std::shared_ptr<const AssetTrack>> audioTracks() override;
    MediaTime duration() override;
    /// Reads all of the movie, but where it was just written.
    bool isWhole() noexcept override;

private:
    std::shared_ptr<const Movie> movie_;
    Origin origin_;
};

} // namespace vantoro::media

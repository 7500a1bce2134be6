// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <stop_token>
#include <vector>

#include "engine/ports/file_system.h"
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

/// Whether nothing that may be sound is missing between the whole fragments or behind them. Never
/// throws: what cannot be read is missing.
bool isUnbroken(const Movie& movie) noexcept;

/// Whether all of it is as it was written: unbroken and intact. Never throws.
bool isWhole(const Movie& movie) noexcept;

/// The tracks of sound, by their places in the scan, in file order; none in a movie without whole
/// fragments. A track's time begins behind the coder's priming. Where damage has taken packets from
/// it, it is silent for as long as they were.
std::vector<std::size_t> audioTracks(const Movie& movie);

/// How long a track is, in frames.
std::int64_t framesIn(const Movie& movie, std::size_t track);

} // namespace vantoro::media

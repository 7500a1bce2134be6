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
#include "media/codec/aac.h"
#include "media/movie/movie_scan.h"

namespace vantoro::media {

/// A movie opened for reading. Any number of threads may read it unless it is growing.
struct Movie {
    std::filesystem::path location;
    std::unique_ptr<InputFile> file;
    MovieScan scan;
    std::vector<std::optional<AacTrack>> codecs; ///< as `readCodecs` gives them
};

/// Opens a movie that is no longer being written, with all its whole fragments. Throws DamagedMovie
/// if the file is not a movie of this recorder, and what the file system throws.
std::shared_ptr<Movie> openMovie(FileSystem& fileSystem, const std::filesystem::path& location);

/// Opens a movie that may still be written, with the whole fragments before the first incomplete
/// one.
std::shared_ptr<Movie> openGrowingMovie(FileSystem& fileSystem,
                                        const std::filesystem::path& location);

/// Whether all fragments match their checksums, with no bytes skipped between them. Reads them all,
/// which is much faster than decoding. Throws if the file cannot be read, and
/// std::errc::operation_canceled on a stop request.
bool isIntact(const Movie& movie, const std::stop_token& stop);

/// Whether no sound may be missing between the whole fragments or after them. Never throws: false
/// for what cannot be read.
bool isUnbroken(const Movie& movie) noexcept;

/// Whether the movie is unbroken and intact. Never throws.
bool isWhole(const Movie& movie) noexcept;

/// The audio tracks' indexes in the scan, in file order; none in a movie without whole fragments. A
/// track's time begins after the priming. It is silent where damage has removed packets.
std::vector<std::size_t> audioTracks(const Movie& movie);

/// A track's length in frames.
std::int64_t framesIn(const Movie& movie, std::size_t track);

} // namespace vantoro::media

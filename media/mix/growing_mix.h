// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <stop_token>
#include <vector>

#include "engine/ports/file_system.h"
#include "engine/ports/recording.h"
#include "media/m4a/m4a_file.h"
#include "media/mix/coded_chunk.h"
#include "media/mix/mixer.h"
#include "media/movie/movie.h"

namespace vantoro::media {

/// The mix of a movie that is still being written, as far as its fragments go, in a file without a
/// name. It becomes the very file that an export of the whole movie makes. Used by one thread at a
/// time; everything throws what the files and the coder throw, and then it is of no use any more.
class GrowingMix {
public:
    /// Of a movie with at least one fragment. `volumes`: of its tracks, in their order. Throws
    /// std::runtime_error where the folder takes no file without a name.
    GrowingMix(const Coding& coding, FileSystem& fileSystem, const std::filesystem::path& movie,
               const std::vector<float>& volumes);

    /// Mixes what there is by now. A stop is heeded at once.
    void goOn(const std::stop_token& stop);

    /// The movie, which is finished. Only what it has grown by since is looked through.
    std::shared_ptr<const Movie> finishedMovie();

    /// Mixes the rest of the movie, which is finished, and returns the file: complete, on the disk,
    /// closed, and without a name. `mix`: the whole of it. Throws std::runtime_error when it is not
    /// the mix that was begun. Nothing may follow.
    std::unique_ptr<OutputFile> complete(const Mix& mix, unsigned threads,
                                         const ExportProgress& progress,
                                         const std::stop_token& stop);

private:
    std::int64_t readFragments();
    void check(const Mix& mix) const;
    void completeChunk(ChunkCoder& coder, const Mix& mix, const std::stop_token& stop);

    const Coding& coding_;
    FileSystem& fileSystem_;
    std::filesystem::path location_;
    std::shared_ptr<Movie> movie_;
    Mix mix_; // of no known end
    std::unique_ptr<OutputFile> unnamed_;
    M4aFile file_; // in that one
    ChunkSplicer splicer_;
    std::int64_t chunk_ = 0;          // being coded
    std::optional<ChunkCoder> coder_; // of that one, once it is begun
};

} // namespace vantoro::media

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
#include "engine/ports/recording_tags.h"
#include "media/m4a/m4a_file.h"
#include "media/mix/encoded_segment.h"

namespace vantoro::media {

/// Mixes a movie that is still being written, fragment by fragment, into an unnamed file. The
/// result is identical to an export of the finished movie. Used by one thread at a time; every
/// operation throws what the files and the encoder throw, after which only destruction is allowed.
class GrowingMix {
public:
    /// The movie has at least one fragment. `volumes`: one per track. Throws std::runtime_error if
    /// the folder does not support unnamed files.
    GrowingMix(const AacCodec& codec, FileSystem& fileSystem, const std::filesystem::path& movie,
               const std::vector<float>& volumes);

    /// Mixes the fragments so far. Returns promptly on a stop request.
    void advance(const std::stop_token& stop);

    /// The finished movie. Scans only its new fragments.
    std::shared_ptr<const Movie> finishedMovie();

    /// Mixes the rest of the finished movie and returns the file: complete, synced, closed and
    /// unnamed. `mix`: the whole mix. Throws std::runtime_error if that differs from the mix begun.
    /// No call may follow.
    std::unique_ptr<OutputFile> complete(const Mix& mix, const RecordingTags& tags,
                                         unsigned threads, const ExportProgress& progress,
                                         const std::stop_token& stop);

private:
    std::int64_t readFragments();
    void spliceSegment();

    const AacCodec& codec_;
    FileSystem& fileSystem_;
    std::filesystem::path location_;
    std::shared_ptr<Movie> movie_;
    Mix mix_; // its end is unknown
    std::unique_ptr<OutputFile> unnamed_;
    M4aFile file_; // writes into `unnamed_`
    SegmentSplicer splicer_;
    std::int64_t segment_ = 0;              // current
    std::optional<SegmentEncoder> encoder_; // encodes that segment, once begun
};

} // namespace vantoro::media

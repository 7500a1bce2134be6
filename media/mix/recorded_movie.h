// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stop_token>
#include <string>
#include <vector>

#include "engine/ports/file_system.h"
#include "engine/ports/recording.h"
#include "media/mix/following_mix.h"
#include "media/mix/mixer.h"
#include "media/movie/movie.h"

namespace vantoro::media {

/// The whole fragments of a movie, finished or not.
///
/// Mixes into a stereo M4A file of 256 kb/s, exactly as long as the longest track; copies a single
/// track at volume 1 instead. Clips the sum to full scale. Memory does not depend on the length,
/// except for two bytes per packet.
class RecordedMovie final : public Recording {
public:
    /// Opens a movie that is no longer being written; throws as `openMovie`. `following`: its mix,
    /// if this process has just written it, which is then only completed.
    RecordedMovie(const AacCodec& codec, FileSystem& fileSystem,
                  const std::filesystem::path& location,
                  std::shared_ptr<FollowingMix> following = nullptr);

    std::size_t trackCount() const override { return tracks_.size(); }

    MediaTime duration() const override;
    /// Reads the whole movie, unless the following mix has scanned each fragment.
    bool isWhole() const noexcept override;

    /// Throws std::invalid_argument unless each track has a finite volume, DamagedMovie if the
    /// movie has changed, and what the files throw.
    std::unique_ptr<OutputFile> mix(const std::vector<float>& volumes, const std::string& title,
                                    OutputFile& staging, const ExportProgress& progress,
                                    const std::stop_token& stop) override;

    int channelsOf(std::size_t track) const override;

    /// Throws as `mix`.
    void copyTrack(std::size_t track, const TrackTitle& title, OutputFile& staging,
                   const ExportProgress& progress, const std::stop_token& stop) override;

private:
    Mix mixAt(const std::vector<float>& volumes) const;
    RecordingTags tagsOr(const std::string& title, std::int64_t frames) const;
    std::unique_ptr<OutputFile> mixInto(OutputFile& staging, const Mix& mix,
                                        const RecordingTags& tags, const ExportProgress& progress,
                                        const std::stop_token& stop);

    const AacCodec& codec_;
    std::shared_ptr<FollowingMix> following_; // may be null
    std::shared_ptr<const Movie> movie_;
    bool isJustWritten_ = false; // and each fragment scanned since
    std::vector<std::size_t> tracks_;
};

} // namespace vantoro::media

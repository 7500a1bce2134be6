// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <stop_token>
#include <thread>
#include <vector>

#include "engine/ports/file_system.h"
#include "engine/ports/recording.h"
#include "media/coding/coding.h"
#include "media/mix/following_mix.h"
#include "media/mix/mixer.h"
#include "media/movie/movie.h"

namespace vantoro::media {

/// What is whole in a movie of fragments, be it finished or not.
///
/// Mixes into a stereo M4A file of 256 kb/s, as long as the longest track to the sample; a single
/// track whose volume stays 1 is copied instead. The sum is limited to full scale only where it is
/// coded. Needs the same memory for any length, but for two bytes a packet.
class RecordedMovie final : public Recording {
public:
    /// Opens a movie that nobody writes any more; throws as `openMovie`. So many threads mix, of
    /// which the file tells nothing.
    RecordedMovie(const Coding& coding, FileSystem& fileSystem,
                  const std::filesystem::path& location,
                  unsigned threads = std::thread::hardware_concurrency());
    /// The same of one that was just written here, and that a mix may have followed, or null: then
    /// that knows the movie, and is only completed.
    RecordedMovie(const Coding& coding, FileSystem& fileSystem,
                  const std::filesystem::path& location, std::shared_ptr<FollowingMix> following);

    std::size_t trackCount() const override { return tracks_.size(); }

    MediaTime duration() const override;
    /// Reads all of the movie, unless the mix that followed it has looked at each fragment.
    bool isWhole() const noexcept override;

    /// Throws std::invalid_argument unless there is a finite volume for each track, DamagedMovie
    /// for a movie that was changed meanwhile, and what the files throw.
    std::unique_ptr<OutputFile> mix(const std::vector<float>& volumes, OutputFile& staging,
                                    const ExportProgress& progress,
                                    const std::stop_token& stop) override;

private:
    Mix mixAt(const std::vector<float>& volumes) const;
    std::unique_ptr<OutputFile> mixInto(OutputFile& staging, const Mix& mix,
                                        const ExportProgress& progress,
                                        const std::stop_token& stop);

    const Coding& coding_;
    std::shared_ptr<FollowingMix> following_; // where there is one
    std::shared_ptr<const Movie> movie_;
    bool isJustWritten_ = false; // by us, who have looked at each fragment since
    std::vector<std::size_t> tracks_;
    unsigned threads_;
};

} // namespace vantoro::media

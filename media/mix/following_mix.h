// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <stop_token>
#include <thread>
#include <vector>

#include "engine/ports/file_system.h"
#include "engine/ports/power_saving.h"
#include "media/mix/growing_mix.h"

namespace vantoro::media {

/// Makes the mix of a movie while that is being written, on a thread that takes only the time that
/// others leave, so that little is left to do at the end. When anything fails, the disk gets full
/// or power is to be saved, it gives up without a word: then the mix is made at the end.
class FollowingMix {
public:
    /// Leaves the recording this much room on the disk.
    static constexpr std::uint64_t leastSpace = std::uint64_t{1} << 30U;
    /// Volumes that change count once they have not for so long.
    static constexpr std::chrono::seconds rest{1};

    /// Throws std::system_error when no thread can be had.
    FollowingMix(const Coding& coding, FileSystem& fileSystem, std::filesystem::path movie,
                 IsPowerSaved isPowerSaved);
    FollowingMix(const FollowingMix&) = delete;
    FollowingMix& operator=(const FollowingMix&) = delete;
    ~FollowingMix();

    /// Of each track, in their order. What was mixed with others is dropped. Any thread.
    void expect(std::vector<float> volumes);
    /// Another fragment is on the disk. Any thread.
    void movieHasGrown();

    /// The movie, which is finished, where the mix knows it already: of a long one, most may have
    /// to come from the disk again. Null where it does not. Nothing is followed any more.
    std::shared_ptr<const Movie> finishedMovie();

    /// Completes the mix of the movie, which is finished, in a file that has no name yet; null
    /// where it was not followed, with these volumes, or a stop is requested. Nothing may follow.
    std::unique_ptr<OutputFile> complete(const Mix& mix, unsigned threads,
                                         const ExportProgress& progress,
                                         const std::stop_token& stop);

private:
    void follow(const std::stop_token& stop);
    bool waitForWork(const std::stop_token& stop);
    void goOn();
    bool isAffordable() const;
    void stopFollowing();

    const Coding& coding_;
    FileSystem& fileSystem_;
    const std::filesystem::path movie_;
    const IsPowerSaved isPowerSaved_;

    std::mutex mutex_; // guards the next ones
    std::condition_variable_any changed_;
    std::vector<float> volumes_;
    std::chrono::steady_clock::time_point changedAt_;
    bool isOutdated_ = false; // other volumes are wanted than those of the mix
    bool hasGrown_ = false;
    bool hasFragments_ = false;
    std::stop_source attempt_; // ends when it is outdated

    std::unique_ptr<GrowingMix> mix_; // the thread's, while that runs
    std::jthread thread_;             // last: it uses the above
};

/// Null when no thread can be had.
std::shared_ptr<FollowingMix> beginFollowing(const Coding& coding, FileSystem& fileSystem,
                                             const std::filesystem::path& movie,
                                             IsPowerSaved isPowerSaved);

} // namespace vantoro::media

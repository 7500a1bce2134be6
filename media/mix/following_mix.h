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
#include "engine/ports/recording_tags.h"
#include "media/mix/growing_mix.h"

namespace vantoro::media {

/// Mixes a movie while it is being written, on a thread of the lowest priority, so that little is
/// left to do at the end. On any failure, on a nearly full disk or in power-save mode it gives up
/// silently; the mix is then made at the end.
class FollowingMix {
public:
    /// Gives up below this much free disk space, in bytes.
    static constexpr std::uint64_t minFreeSpace = std::uint64_t{1} << 30U;
    /// New volumes take effect once they have not changed for this long.
    static constexpr std::chrono::seconds settleTime{1};

    /// Throws std::system_error if the thread cannot be started.
    FollowingMix(const AacCodec& codec, FileSystem& fileSystem, std::filesystem::path movie,
                 IsPowerSaved isPowerSaved);
    FollowingMix(const FollowingMix&) = delete;
    FollowingMix& operator=(const FollowingMix&) = delete;
    ~FollowingMix();

    /// Sets each track's volume; drops a mix with other volumes. Any thread.
    void expect(std::vector<float> volumes);
    /// Call when another fragment is on the disk. Any thread.
    void fragmentWritten();

    /// The finished movie, without scanning it again, or null if there is no mix. Stops following.
    std::shared_ptr<const Movie> finishedMovie();

    /// Completes the finished movie's mix in an unnamed file. Null if there is no mix or it has
    /// other volumes, and on a stop request. No call may follow.
    std::unique_ptr<OutputFile> complete(const Mix& mix, const RecordingTags& tags,
                                         unsigned threads, const ExportProgress& progress,
                                         const std::stop_token& stop);

private:
    void follow(const std::stop_token& stop);
    bool waitForWork(const std::stop_token& stop);
    void advance();
    bool isAffordable() const;
    void stopFollowing();

    const AacCodec& codec_;
    FileSystem& fileSystem_;
    const std::filesystem::path movie_;
    const IsPowerSaved isPowerSaved_;

    std::mutex mutex_; // guards the members up to `attempt_`
    std::condition_variable_any changed_;
    std::vector<float> volumes_;
    std::chrono::steady_clock::time_point changedAt_;
    bool isOutdated_ = false; // the mix has other volumes
    bool hasNewFragment_ = false;
    bool hasFragments_ = false;
    std::stop_source attempt_; // stopped when outdated

    std::unique_ptr<GrowingMix> mix_; // used by the thread while it runs
    std::jthread thread_;             // last, because it uses the above
};

} // namespace vantoro::media

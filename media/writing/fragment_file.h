// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "engine/ports/file_system.h"

namespace vantoro::media {

/// Writes finished fragments on its own thread, with one write and one sync each, so that a slow
/// disk delays no caller. The file always consists of whole fragments, except for the one being
/// written.
///
/// After a failed write it truncates the file to its last whole fragment and keeps the remaining
/// ones in memory for `finish`, which tries once more. Called by one thread; `backlog` by any.
class FragmentFile {
public:
    /// Receives a failed write's error. File thread.
    using Failure = std::function<void(std::exception_ptr error)>;
    /// Called when another fragment is on the disk; `backlog`: bytes waiting. File thread.
    using Growth = std::function<void(std::size_t backlog)>;
    /// Called when the file is closed; `failure`: why it holds no sound, or null. File thread.
    using Completion = std::function<void(const std::exception_ptr& failure)>;

    FragmentFile(std::unique_ptr<OutputFile> file, Failure onFailure, Growth onGrowth);
    FragmentFile(const FragmentFile&) = delete;
    FragmentFile& operator=(const FragmentFile&) = delete;
    /// Waits until all fragments are written or one fails; keeps the file. Not on the file thread.
    ~FragmentFile();

    /// `end`: the fragment's end, in frames from the movie's beginning.
    void append(std::vector<std::byte> fragment, std::int64_t end);
    /// Bytes waiting to be written.
    std::size_t backlog() const;

    /// The frames on the disk, and the latest write's failure or null. File thread.
    std::int64_t framesOnDisk() const noexcept { return framesOnDisk_; }

    const std::exception_ptr& latestFailure() const noexcept { return failure_; }

    /// Writes the remaining fragments, syncs, makes the file reachable and closes it. If at least
    /// one fragment is on disk, drops those that cannot be written. Calls the completion once, at
    /// the end. No call may follow.
    void finish(Completion completion);

private:
    struct Fragment {
        std::vector<std::byte> bytes;
        std::int64_t end; // frames
    };

    void run();
    bool writeNext();
    void conclude();
    void cutBack() noexcept;

    // Used on the file thread only.
    std::unique_ptr<OutputFile> file_;
    Failure onFailure_;
    Growth onGrowth_;
    std::uint64_t end_ = 0; // after the last whole fragment
    std::int64_t framesOnDisk_ = 0;
    std::exception_ptr failure_; // why the latest write failed

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Fragment> fragments_;
    std::size_t backlog_ = 0;
    bool stopping_ = false;
    Completion completion_;
    std::jthread thread_; // last, because it uses the above and joins on destruction
};

} // namespace vantoro::media

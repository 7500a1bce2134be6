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

/// Brings finished fragments to disk on a thread of its own, one write and one sync each, so that
/// a slow disk delays nobody. At any moment the file is a row of whole fragments, but for the one
/// that is being written.
///
/// After a failed write the file is cut back to its last whole fragment and what is left waits in
/// memory for `finish`, which tries once more. Called by one thread; `backlog` by any.
class FragmentFile {
public:
    /// Told, on the file thread, why a write failed.
    using Failure = std::function<void(std::exception_ptr error)>;
    /// Told, on the file thread, that another fragment is on the disk, and how many bytes wait.
    using Growth = std::function<void(std::size_t backlog)>;
    /// Told, on the file thread, that the file is closed: why it holds nothing of use, or null.
    using Completion = std::function<void(const std::exception_ptr& failure)>;

    FragmentFile(std::unique_ptr<OutputFile> file, Failure onFailure, Growth onGrowth);
    FragmentFile(const FragmentFile&) = delete;
    FragmentFile& operator=(const FragmentFile&) = delete;
    /// Waits until all fragments are written, or one fails; the file stays. Not on the file thread.
    ~FragmentFile();

    /// `end`: how many frames the movie has up to the fragment's end.
    void append(std::vector<std::byte> fragment, std::int64_t end);
    /// Bytes that wait to be written.
    std::size_t backlog() const;

    /// How many frames the movie has on the disk, and why the latest write failed. File thread.
    std::int64_t framesOnDisk() const noexcept { return framesOnDisk_; }

    const std::exception_ptr& latestFailure() const noexcept { return failure_; }

    /// Writes what is left, syncs, makes the file reachable and closes it. Fragments that cannot be
    /// written are given up when a whole one is on disk. The completion is called once, last of
    /// all. Nothing may follow.
    void finish(Completion completion);

private:
    struct Fragment {
        std::vector<std::byte> bytes;
        std::int64_t end; // frames
    };

    void run();
    bool writeNext();
    void conclude();
    std::exception_ptr writeRest();
    void cutBack() noexcept;

    // Touched on the file thread only.
    std::unique_ptr<OutputFile> file_;
    Failure onFailure_;
    Growth onGrowth_;
    std::uint64_t end_ = 0; // of the last whole fragment
    std::int64_t framesOnDisk_ = 0;
    std::exception_ptr failure_; // why the latest write failed

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Fragment> fragments_;
    std::size_t backlog_ = 0;
    bool failed_ = false;
    bool stopping_ = false;
    Completion completion_;
    std::thread thread_;
};

} // namespace vantoro::media

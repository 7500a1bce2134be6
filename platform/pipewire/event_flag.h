// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace vantoro::pipewire {

using Deadline = std::chrono::steady_clock::time_point;

/// A one-time event that a task can wait for with a time limit.
class EventFlag {
public:
    void set() {
        {
            const std::lock_guard lock(mutex_);
            isSet_ = true;
        }
        changed_.notify_all();
    }

    void clear() {
        const std::lock_guard lock(mutex_);
        isSet_ = false;
    }

    /// False if the deadline passed first.
    bool waitUntil(Deadline deadline) {
        std::unique_lock lock(mutex_);
        return changed_.wait_until(lock, deadline, [this] { return isSet_; });
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool isSet_ = false;
};

} // namespace vantoro::pipewire

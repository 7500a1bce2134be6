// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <functional>
#include <mutex>
#include <optional>

namespace vantoro::desktop {

/// Remembers that a service did not answer, so that later callers need not wait for it. Any thread.
class Silence {
public:
    /// `ask` blocks, and returns true if there was no answer; this then returns true for one minute
    /// without asking. Concurrent callers wait for each other.
    bool isSilent(const std::function<bool()>& ask) {
        const std::lock_guard lock(mutex_);
        if (until_ && Clock::now() < *until_) {
            return true;
        }
        const bool isSilent = ask();
        until_ = isSilent ? std::optional(Clock::now() + length) : std::nullopt;
        return isSilent;
    }

private:
    using Clock = std::chrono::steady_clock;

    static constexpr std::chrono::minutes length{1};

    std::mutex mutex_;
    std::optional<Clock::time_point> until_; // guarded by mutex_
};

} // namespace vantoro::desktop

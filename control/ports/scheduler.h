// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace vantoro {

/// A timer that fires until it is destroyed, and not once after that. Main thread.
class RepeatingTimer {
public:
    virtual ~RepeatingTimer() = default;
};

/// Where and when work runs. What it is given must not throw.
class Scheduler {
public:
    virtual ~Scheduler() = default;

    /// Soon, never within the call, in the order of the calls. Any thread.
    virtual void runOnMainThread(std::function<void()> work) = 0;

    /// Beside all other work: work that may block for long, and does not wait for such work that
    /// was given earlier. Any thread.
    virtual void runOnTaskThread(std::function<void()> work) = 0;

    /// Fires on the main thread, for the first time after one interval. Main thread.
    virtual std::unique_ptr<RepeatingTimer> startTimer(std::chrono::milliseconds interval,
                                                       std::function<void()> fire) = 0;
};

} // namespace vantoro

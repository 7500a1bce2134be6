// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace vantoro {

/// A timer that fires until it is destroyed, and never afterwards. Main thread.
class RepeatingTimer {
public:
    virtual ~RepeatingTimer() = default;
};

/// Where and when work runs. Work must not throw.
class Scheduler {
public:
    virtual ~Scheduler() = default;

    /// Runs soon, in the order of the calls, never within the call. Any thread.
    virtual void runOnMainThread(std::function<void()> work) = 0;

    /// Runs at once, beside all other work, and may block for long. Any thread.
    virtual void runOnTaskThread(std::function<void()> work) = 0;

    /// Fires on the main thread, first after one interval. Main thread.
    virtual std::unique_ptr<RepeatingTimer> startTimer(std::chrono::milliseconds interval,
                                                       std::function<void()> fire) = 0;
};

} // namespace vantoro

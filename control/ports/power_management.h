// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <memory>
#include <string>

namespace vantoro {

/// While it lives the machine does not suspend for want of a user, and puts off any other sleep,
/// and its shutdown, for as long as the system allows. Main thread.
class SleepHold {
public:
    virtual ~SleepHold() = default;
};

/// Ends with it: its functions are not called afterwards. Main thread.
class PowerObservation {
public:
    virtual ~PowerObservation() = default;
};

/// The machine going to sleep and waking. Called on the main thread, which is never kept waiting.
class PowerManagement {
public:
    virtual ~PowerManagement() = default;

    /// Both are called on the main thread; `willSleep` also before a shutdown, which no `didWake`
    /// follows even where it is called off.
    virtual std::unique_ptr<PowerObservation> observe(std::function<void()> willSleep,
                                                      std::function<void()> didWake) = 0;

    /// `reason` is what the user reads where the system lists who holds off its sleep. Takes effect
    /// soon after the call; without effect where the system knows no such thing.
    virtual std::unique_ptr<SleepHold> holdOffSleep(const std::string& reason) = 0;
};

} // namespace vantoro

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <memory>
#include <string>

namespace vantoro {

/// While it exists, the machine does not suspend when idle, and delays any other sleep, and
/// shutdown, for as long as the system allows. Main thread.
class SleepHold {
public:
    virtual ~SleepHold() = default;
};

/// Unsubscribes on destruction; no callback runs afterwards. Main thread.
class PowerObservation {
public:
    virtual ~PowerObservation() = default;
};

/// Reports sleep and wake, and holds off sleep. Main thread; never blocks.
class PowerManagement {
public:
    virtual ~PowerManagement() = default;

    /// Calls both on the main thread. `willSleep` also runs before a shutdown; no `didWake` follows
    /// that, even if the shutdown is cancelled.
    virtual std::unique_ptr<PowerObservation> observe(std::function<void()> willSleep,
                                                      std::function<void()> didWake) = 0;

    /// `reason` is shown to the user where the system lists sleep inhibitors. Takes effect soon
    /// after the call; has no effect if the system does not support it.
    virtual std::unique_ptr<SleepHold> holdOffSleep(const std::string& reason) = 0;
};

} // namespace vantoro

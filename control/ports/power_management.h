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

/// Main thread; never blocks.
class PowerManagement {
public:
    virtual ~PowerManagement() = default;

    /// `willSleep` also runs before a shutdown, which no `didWake` follows, even if it is
    /// cancelled.
    virtual std::unique_ptr<PowerObservation> observe(std::function<void()> willSleep,
                                                      std::function<void()> didWake) = 0;

    /// Takes effect soon after the call, if the system can do it; lists `reason` for the user.
    virtual std::unique_ptr<SleepHold> holdOffSleep(const std::string& reason) = 0;
};

} // namespace vantoro

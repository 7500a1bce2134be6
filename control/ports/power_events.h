#pragma once

#include <functional>
#include <memory>

namespace vantoro {

/// While it lives the machine puts off going to sleep, for as long as the system allows.
class SleepDelay {
public:
    virtual ~SleepDelay() = default;
};

/// Ends with it: its functions are not called afterwards. Main thread.
class PowerObservation {
public:
    virtual ~PowerObservation() = default;
};

/// The machine going to sleep and waking.
class PowerEvents {
public:
    virtual ~PowerEvents() = default;

    /// Both are called on the main thread; `willSleep` may keep the delay, which may be null where
    /// the system grants none.
    virtual std::unique_ptr<PowerObservation>
    observe(std::function<void(std::shared_ptr<SleepDelay>)> willSleep,
            std::function<void()> didWake) = 0;
};

} // namespace vantoro

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <ctime>

namespace vantoro {

/// Time as the recorder asks for it. Any thread.
class Clock {
public:
    virtual ~Clock() = default;
    /// Seconds since the machine was started, never running backwards.
    virtual double systemUptime() const = 0;
    /// Now, in the user's time zone.
    virtual std::tm localTime() const = 0;
};

} // namespace vantoro

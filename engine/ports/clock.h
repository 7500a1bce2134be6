// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <ctime>

#include "engine/ports/recording_tags.h"

namespace vantoro {

/// The recorder's time source. Any thread.
class Clock {
public:
    virtual ~Clock() = default;
    /// Seconds since boot, monotonic.
    virtual double systemUptime() const = 0;
    /// The current time in the user's time zone.
    virtual std::tm localTime() const = 0;
    /// The current moment.
    virtual WallTime wallTime() const = 0;
};

} // namespace vantoro

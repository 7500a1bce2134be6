// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/ports/clock.h"

namespace vantoro::posix {

class SystemClock final : public Clock {
public:
    /// Does not count suspended time.
    double systemUptime() const override;
    /// Follows time zone changes while the program runs.
    std::tm localTime() const override;
    WallTime wallTime() const override;
};

} // namespace vantoro::posix

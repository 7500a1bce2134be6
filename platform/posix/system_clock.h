// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/ports/clock.h"

namespace vantoro::posix {

class SystemClock final : public Clock {
public:
    /// Time asleep is not counted.
    double systemUptime() const override;
    /// Follows a change of the time zone while the program runs.
    std::tm localTime() const override;
};

} // namespace vantoro::posix

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <ctime>

#include "engine/ports/clock.h"

namespace vantoro::testing {

class FakeClock final : public Clock {
public:
    double uptime = 1000;
    std::tm local = [] {
        std::tm time{};
        time.tm_year = 125;
        time.tm_mon = 2;
        time.tm_mday = 1;
        time.tm_hour = 9;
        time.tm_min = 30;
        time.tm_sec = 15;
        return time;
    }();

    WallTime wall{.seconds = 1740792615, .utcOffset = 28800}; // 2025-03-01 09:30:15, UTC+8

    double systemUptime() const override { return uptime; }

    std::tm localTime() const override { return local; }

    WallTime wallTime() const override { return wall; }
};

} // namespace vantoro::testing

// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/posix/system_clock.h"

#include <cstdlib>
#include <ctime>
#include <fstream>
#include <optional>
#include <string>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

/// Sets the program's time zone temporarily.
class TimeZone {
public:
    explicit TimeZone(const char* name) {
        if (const char* const before = std::getenv("TZ")) {
            before_ = before;
        }
        ::setenv("TZ", name, 1);
    }

    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

    ~TimeZone() {
        if (before_) {
            ::setenv("TZ", before_->c_str(), 1);
        } else {
            ::unsetenv("TZ");
        }
        ::tzset();
    }

private:
    std::optional<std::string> before_;
};

TEST(SystemClockTest, uptimeIsTheTimeSinceTheMachineWasStarted) {
    const posix::SystemClock clock;
    const double first = clock.systemUptime();
    double sinceBoot = 0; // from the kernel, in hundredths; includes suspended time
    std::ifstream("/proc/uptime") >> sinceBoot;
    const double second = clock.systemUptime();
    EXPECT_LE(first, second);
    EXPECT_GT(first, 0);
    EXPECT_LE(first, sinceBoot + 0.02);
}

TEST(SystemClockTest, localTimeFollowsTheZoneEvenWhenItChanges) {
    const posix::SystemClock clock;

    struct Case {
        const char* zone;
        long secondsEast;
    };

    for (const auto& [zone, secondsEast] :
         {Case{"UTC0", 0}, Case{"EAST-5:30", 19800}, Case{"WEST8", -28800}}) {
        const TimeZone current(zone);
        const std::time_t before = std::time(nullptr);
        std::tm local = clock.localTime();
        const std::time_t after = std::time(nullptr);
        EXPECT_EQ(local.tm_gmtoff, secondsEast) << zone;
        const std::time_t shown = ::timegm(&local) - secondsEast;
        EXPECT_LE(before, shown) << zone;
        EXPECT_GE(after, shown) << zone;
    }
}

TEST(SystemClockTest, wallTimeIsTheMomentAndTheZone) {
    const posix::SystemClock clock;
    const TimeZone current("EAST-5:30");
    const std::time_t before = std::time(nullptr);
    const WallTime wall = clock.wallTime();
    EXPECT_LE(before, wall.seconds);
    EXPECT_GE(std::time(nullptr), wall.seconds);
    EXPECT_EQ(wall.utcOffset, 19800);
}

} // namespace
} // namespace vantoro::testing

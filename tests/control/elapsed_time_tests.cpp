// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/elapsed_time.h"

#include <limits>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

TEST(ElapsedTimeTest, isShownWithHoursOnlyFromOneHourOn) {
    struct Row {
        std::int64_t seconds;
        const char* shown;
    };

    for (const auto& [seconds, shown] : {
             Row{0, "00:00"},
             Row{9, "00:09"},
             Row{59, "00:59"},
             Row{60, "01:00"},
             Row{75, "01:15"},
             Row{3599, "59:59"},
             Row{3600, "01:00:00"},
             Row{7199, "01:59:59"},
             Row{36125, "10:02:05"},
             Row{86400, "24:00:00"},
             Row{360000, "100:00:00"},
         }) {
        EXPECT_EQ(formattedElapsedTime(seconds), shown);
    }
}

TEST(ElapsedTimeTest, countsSeconds) {
    EXPECT_EQ(nextSecond(0), 1);
    EXPECT_EQ(nextSecond(std::numeric_limits<std::int64_t>::max() - 1),
              std::numeric_limits<std::int64_t>::max());
}

TEST(ElapsedTimeDeathTest, abortsOnOverflow) {
    EXPECT_DEATH(nextSecond(std::numeric_limits<std::int64_t>::max()), "");
}

} // namespace
} // namespace vantoro::testing

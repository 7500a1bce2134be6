// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/recorder/progress_pace.h"

#include <vector>

#include <gtest/gtest.h>

#include "tests/support/fake_clock.h"

namespace vantoro::testing {
namespace {

TEST(ProgressPaceTest, isToldTenTimesASecondAndOnceItIsComplete) {
    FakeClock clock;
    std::vector<double> told;
    const ExportProgress progress = [&](double fraction) { told.push_back(fraction); };
    ProgressPace pace(progress, clock);
    for (int step = 0; step < 100; ++step) { // in a second
        pace(step / 100.0);
        clock.uptime += 0.01;
    }
    EXPECT_GE(told.size(), 9U);
    EXPECT_LE(told.size(), 10U);
    EXPECT_EQ(told.front(), 0);
    pace(0.995);
    const auto before = told.size();
    pace(1);
    EXPECT_EQ(told.size(), before + 1);
    EXPECT_EQ(told.back(), 1);
}

TEST(ProgressPaceTest, nobodyMayListen) {
    const FakeClock clock;
    const ExportProgress nobody;
    ProgressPace pace(nobody, clock);
    pace(1);
}

} // namespace
} // namespace vantoro::testing

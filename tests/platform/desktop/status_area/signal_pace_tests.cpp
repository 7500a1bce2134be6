// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/status_area/signal_pace.h"

#include <vector>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using desktop::SignalPace;
using namespace std::chrono_literals;

TEST(SignalPaceTest, firstIsToldAtOnce) {
    const SignalPace pace;
    EXPECT_EQ(pace.waitAt(SignalPace::Moment{}), 0ms);
}

TEST(SignalPaceTest, nextWaitsForTheRestOfTheInterval) {
    const SignalPace::Moment begin{};
    SignalPace pace;
    pace.signalledAt(begin);
    EXPECT_EQ(pace.waitAt(begin), 67ms);
    EXPECT_EQ(pace.waitAt(begin + 66'001us), 1ms);
    EXPECT_EQ(pace.waitAt(begin + 67ms), 0ms);
    EXPECT_EQ(pace.waitAt(begin + 1h), 0ms);
}

TEST(SignalPaceTest, noSecondHasMoreThanFifteen) {
    SignalPace pace;
    std::vector<SignalPace::Moment> told;
    for (SignalPace::Moment now{}; now < SignalPace::Moment{} + 10s; now += 1ms) {
        if (pace.waitAt(now) == 0ms) {
            pace.signalledAt(now);
            told.push_back(now);
        }
    }
    ASSERT_GT(told.size(), 140U);
    for (std::size_t i = 15; i < told.size(); ++i) {
        EXPECT_GE(told[i] - told[i - 15], 1s);
    }
}

} // namespace
} // namespace vantoro::testing

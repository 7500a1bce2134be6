// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/samples/frame_clock.h"

#include <chrono>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using namespace capture;

TEST(GridPosition, isTheNearestFrame) {
    EXPECT_EQ(gridPosition(0), 0);
    EXPECT_EQ(gridPosition(1'000'000'000), 48000);
    EXPECT_EQ(gridPosition(20'833), 1);
    EXPECT_EQ(gridPosition(10'416), 0);
    EXPECT_EQ(gridPosition(10'417), 1);
    EXPECT_EQ(gridPosition(31'250), 2) << "a frame and a half";
    EXPECT_EQ(gridPosition(52'083), 2);
    EXPECT_EQ(gridPosition(52'084), 3);
}

TEST(FramesInMilliseconds, areFortyEightEach) {
    EXPECT_EQ(framesInMilliseconds(1), 48);
    EXPECT_EQ(framesInMilliseconds(1000), 48000);
}

TEST(NanosecondsOn, isTheClocksTime) {
    const auto now = [] {
        return static_cast<std::uint64_t>(
            std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count());
    };
    const auto before = now();
    const auto between = nanosecondsOn(CLOCK_MONOTONIC);
    EXPECT_LE(before, between);
    EXPECT_LE(between, now());
}

} // namespace
} // namespace vantoro::testing

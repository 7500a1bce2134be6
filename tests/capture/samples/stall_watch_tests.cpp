// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/samples/capture_watch.h"

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using namespace capture;

constexpr std::uint64_t second = 1'000'000'000;

class Stall : public ::testing::Test {
protected:
    /// Updates twice a second without callbacks; returns the seconds until a stall is reported, at
    /// most `most`.
    std::uint64_t secondsUntilStall(std::uint64_t most) {
        for (std::uint64_t half = 1; half <= 2 * most; ++half) {
            now += second / 2;
            if (watch.update(callbacks, now, now + asleep)) {
                return half / 2;
            }
        }
        return most;
    }

    StallWatch watch;
    std::uint64_t callbacks = 50;
    std::uint64_t now = 1000 * second;
    std::uint64_t asleep = 77 * second;
};

TEST_F(Stall, isReportedAfterTenSecondsWithoutACallback) {
    watch.update(callbacks, now, now + asleep);
    EXPECT_EQ(secondsUntilStall(20), 10U);
}

TEST_F(Stall, isNotReportedWhileCallbacksCome) {
    for (int half = 0; half < 100; ++half) {
        now += second / 2;
        EXPECT_FALSE(watch.update(++callbacks, now, now + asleep));
    }
}

TEST_F(Stall, startsOverAfterTheMachineWasSuspended) {
    watch.update(callbacks, now, now + asleep);
    EXPECT_EQ(secondsUntilStall(9), 9U);
    asleep += 3600 * second;
    EXPECT_EQ(secondsUntilStall(20), 10U);
}

TEST_F(Stall, doesNotCountTimeInWhichWeDidNotRun) {
    watch.update(callbacks, now, now + asleep);
    now += 60 * second;
    EXPECT_FALSE(watch.update(callbacks, now, now + asleep));
    EXPECT_EQ(secondsUntilStall(20), 9U);
}

TEST_F(Stall, countsFromTheFirstUpdateOfAStreamThatNeverStarted) {
    callbacks = 0;
    asleep = 0;
    watch.update(callbacks, now, now);
    EXPECT_EQ(secondsUntilStall(20), 10U);
}

TEST_F(Stall, isReportedExactlyAtTheLimit) {
    watch.update(callbacks, now, now + asleep);
    now += 60 * second; // counts as one second
    watch.update(callbacks, now, now + asleep);
    for (int i = 0; i < 8; ++i) {
        now += second;
        EXPECT_FALSE(watch.update(callbacks, now, now + asleep));
    }
    now += second - 1;
    EXPECT_FALSE(watch.update(callbacks, now, now + asleep));
    now += 1;
    EXPECT_TRUE(watch.update(callbacks, now, now + asleep));
}

TEST_F(Stall, doesNotMistakeClockJitterForASuspend) {
    for (const bool wasSuspended : {false, true}) {
        StallWatch other;
        other.update(callbacks, now, now + asleep);
        now += second;
        other.update(callbacks, now, now + asleep);
        asleep += second / 2 + (wasSuspended ? 1 : 0);
        int seconds = 1;
        do {
            now += second;
            ++seconds;
        } while (!other.update(callbacks, now, now + asleep) && seconds < 20);
        EXPECT_EQ(seconds, wasSuspended ? 12 : 10);
    }
}

} // namespace
} // namespace vantoro::testing

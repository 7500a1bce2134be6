// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/writing/fragment_schedule.h"

#include <gtest/gtest.h>

#include <vector>

namespace vantoro::testing {
namespace {

using namespace media;

TEST(FragmentSchedule, usesTheInitialIntervalThenTheOther) {
    FragmentSchedule schedule(48000, 480000);
    EXPECT_EQ(schedule.end(), 48000);
    schedule.advance();
    EXPECT_EQ(schedule.end(), 528000);
    schedule.advance();
    EXPECT_EQ(schedule.end(), 1008000);
}

TEST(FragmentSchedule, waitsForThePacketAtTheEndAndTheCodersDelay) {
    EXPECT_EQ(FragmentSchedule(10240, 10240).framesToClose(), 10240 + 2048);
    EXPECT_EQ(FragmentSchedule(10241, 10240).framesToClose(), 11264 + 2048);
    EXPECT_EQ(FragmentSchedule(11264, 10240).framesToClose(), 11264 + 2048);
}

TEST(FragmentSchedule, alwaysAdvances) {
    FragmentSchedule schedule(0, -5);
    EXPECT_GT(schedule.end(), 0);
    const auto before = schedule.end();
    schedule.advance();
    EXPECT_GT(schedule.end(), before);
}

TEST(FragmentSchedule, aSourceDelaysAFragmentByTwoSecondsAtMost) {
    const FragmentSchedule schedule(48000, 480000);

    struct Case {
        std::vector<std::int64_t> positions;
        bool heldBack;
    };

    const std::vector<Case> cases{
        {{0, 48000}, false},     {{0, 144000}, false},
        {{0, 144001}, true},     {{144001, 0}, true},
        {{144001, 48000}, true}, {{144001, 144001}, false},
        {{144001, 50175}, true}, {{144001, 50176}, false},
        {{144001}, false},       {{}, false},
    };
    for (const Case& test : cases) {
        EXPECT_EQ(schedule.isHeldBack(test.positions), test.heldBack)
            << ::testing::PrintToString(test.positions);
    }
}

} // namespace
} // namespace vantoro::testing

// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/recording_state.h"

#include <array>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using Case = RecordingState::Case;

TEST(RecordingStateTest, beginsIdle) {
    EXPECT_EQ(RecordingState().which(), Case::idle);
}

TEST(RecordingStateTest, equalsOneOfTheSameCase) {
    constexpr std::array cases{Case::idle,       Case::preparing, Case::recording,
                               Case::processing, Case::completed, Case::failed};
    for (const auto a : cases) {
        for (const auto b : cases) {
            EXPECT_EQ(RecordingState(a) == RecordingState(b), a == b);
        }
    }
}

TEST(RecordingStateTest, whenFailedEqualsOneOfTheSameTextOnly) {
    EXPECT_EQ(RecordingState::failed("a"), RecordingState::failed("a"));
    EXPECT_NE(RecordingState::failed("a"), RecordingState::failed("b"));
    EXPECT_EQ(RecordingState::failed("a").description(), "a");
}

} // namespace
} // namespace vantoro::testing

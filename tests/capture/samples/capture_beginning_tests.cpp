// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/samples/frame_clock.h"

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using namespace capture;

constexpr std::uint64_t atMillisecond(std::uint64_t milliseconds) {
    return milliseconds * 1'000'000;
}

struct BeginningCase {
    const char* name;
    std::vector<std::uint64_t> firstStamps;
    std::int64_t expected;
};

class CaptureBeginning : public ::testing::TestWithParam<BeginningCase> {};

TEST_P(CaptureBeginning, keepsTheFirstSoundButNoLongSilence) {
    EXPECT_EQ(captureBeginning(GetParam().firstStamps, atMillisecond(9000)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    All, CaptureBeginning,
    ::testing::Values(
        BeginningCase{"one", {atMillisecond(5000)}, 240000},
        BeginningCase{
            "together", {atMillisecond(5000), atMillisecond(5000), atMillisecond(5000)}, 240000},
        BeginningCase{"aCycleApart", {atMillisecond(5043), atMillisecond(5000)}, 240000},
        BeginningCase{"aLongCycleApart", {atMillisecond(5000), atMillisecond(5170)}, 240000},
        BeginningCase{"aSlowMicrophone", {atMillisecond(5000), atMillisecond(8000)}, 384000 - 8192},
        BeginningCase{"anOutputThatIsBroken", {0, atMillisecond(5000), 0}, 240000},
        BeginningCase{"nothingAtAll", {0, 0}, 432000}, BeginningCase{"noStreams", {}, 432000}),
    [](const auto& test) { return test.param.name; });

} // namespace
} // namespace vantoro::testing

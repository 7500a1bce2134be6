// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/channel_fold.h"

#include <algorithm>
#include <array>

#include <gtest/gtest.h>

namespace vantoro::pipewire {

namespace {

struct FoldCase {
    const char* channel;
    float left;
    float right;
};

class FoldToStereo : public ::testing::TestWithParam<FoldCase> {};

TEST_P(FoldToStereo, givesEachChannelItsPlace) {
    constexpr std::array<float, 2> silence{};
    constexpr std::array<float, 2> sound{0, 1};
    TapPlanes planes;
    std::ranges::transform(tapChannels, planes.begin(), [&](std::string_view channel) {
        return std::span(channel == GetParam().channel ? sound : silence);
    });
    std::array<float, 4> stereo{9, 9, 9, 9};
    foldToStereo(planes, stereo);
    EXPECT_EQ(stereo[0], 0);
    EXPECT_EQ(stereo[1], 0);
    EXPECT_FLOAT_EQ(stereo[2], GetParam().left);
    EXPECT_FLOAT_EQ(stereo[3], GetParam().right);
}

TEST(FoldToStereo, endsWithTheRoomThatItIsGiven) {
    constexpr std::array<float, 3> sound{1, 1, 1};
    TapPlanes planes;
    planes.fill(sound);
    std::array<float, 6> stereo{9, 9, 9, 9, 9, 9};
    foldToStereo(planes, std::span(stereo).first(4));
    EXPECT_NE(stereo[3], 9);
    EXPECT_EQ(stereo[4], 9);
    EXPECT_EQ(stereo[5], 9);
}

constexpr float low = 0.70710678F;

INSTANTIATE_TEST_SUITE_P(Channels, FoldToStereo,
                         ::testing::Values(FoldCase{"FL", 1, 0}, FoldCase{"FR", 0, 1},
                                           FoldCase{"SL", low, 0}, FoldCase{"SR", 0, low}),
                         [](const auto& test) { return test.param.channel; });

struct TargetCase {
    std::vector<std::string> ports;
    std::vector<std::vector<std::string_view>> targets;
};

class TapChannelsFor : public ::testing::TestWithParam<TargetCase> {};

TEST_P(TapChannelsFor, leadsEachPortToItsSide) {
    EXPECT_EQ(tapChannelsFor(GetParam().ports), GetParam().targets);
}

INSTANTIATE_TEST_SUITE_P(
    Layouts, TapChannelsFor,
    ::testing::Values(TargetCase{{"MONO"}, {{"FL", "FR"}}}, TargetCase{{"FC"}, {{"FL", "FR"}}},
                      TargetCase{{"FL", "FR"}, {{"FL"}, {"FR"}}},
                      TargetCase{{"UNK"}, {{"FL", "FR"}}}, TargetCase{{""}, {{"FL", "FR"}}},
                      TargetCase{{"AUX0", "AUX1", "AUX2"}, {{"FL"}, {"FR"}, {"FL"}}},
                      TargetCase{{"FL", "FR", "FC", "LFE", "RL", "RR"},
                                 {{"FL"}, {"FR"}, {"SL", "SR"}, {}, {"SL"}, {"SR"}}},
                      TargetCase{{"FL", "FLW", "FLH", "FR", "FRW", "FRH"},
                                 {{"FL"}, {"FL"}, {"FL"}, {"FR"}, {"FR"}, {"FR"}}},
                      TargetCase{{"FL", "FR", "MONO"}, {{"FL"}, {"FR"}, {"SL", "SR"}}},
                      TargetCase{{"FLC", "FRC", "RC", "LFE2", "TFL", "TFR"},
                                 {{"FL"}, {"FR"}, {"SL", "SR"}, {}, {"SL"}, {"SR"}}}));

} // namespace

} // namespace vantoro::pipewire

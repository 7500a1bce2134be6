// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/graph/channel_fold.h"

#include <algorithm>
#include <array>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using namespace capture;

struct FoldCase {
    const char* channel;
    float left;
    float right;
};

class FoldToStereo : public ::testing::TestWithParam<FoldCase> {};

TEST_P(FoldToStereo, mapsEachChannelToItsPosition) {
    constexpr std::array<float, 2> silence{};
    constexpr std::array<float, 2> sound{0, 1};
    TapPlanes planes;
    std::ranges::transform(tapChannels, planes.begin(), [&](std::string_view channel) {
        return std::span(channel == GetParam().channel ? sound : silence);
    });
    std::array<float, 2> left{9, 9};
    std::array<float, 2> right{9, 9};
    foldToStereo(planes, left, right);
    EXPECT_EQ(left[0], 0);
    EXPECT_EQ(right[0], 0);
    EXPECT_FLOAT_EQ(left[1], GetParam().left);
    EXPECT_FLOAT_EQ(right[1], GetParam().right);
}

TEST(FoldToStereo, stopsAtTheEndOfTheOutput) {
    constexpr std::array<float, 3> sound{1, 1, 1};
    TapPlanes planes;
    planes.fill(sound);
    std::array<float, 3> left{9, 9, 9};
    std::array<float, 3> right{9, 9, 9};
    foldToStereo(planes, std::span(left).first(2), std::span(right).first(2));
    EXPECT_NE(left[1], 9);
    EXPECT_NE(right[1], 9);
    EXPECT_EQ(left[2], 9);
    EXPECT_EQ(right[2], 9);
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

TEST_P(TapChannelsFor, mapsEachPortToItsSide) {
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

TEST(ChannelFold, recognizesChannelsSynthesizedByTheSoundServer) {
    struct Case {
        std::vector<std::string> given;
        std::vector<std::string> output;
        std::vector<std::string> kept;
    };

    const std::vector<std::string> eight{"FL", "FR", "FC", "LFE", "RL", "RR", "SL", "SR"};
    for (const Case& now : std::vector<Case>{
             {{"FL", "FR"}, eight, {"FL", "FR"}},
             {{"FL", "FR"}, {"FL", "FR"}, {"FL", "FR"}},
             {{"MONO"}, eight, {"FL", "FR"}},
             {{"MONO"}, {"MONO"}, {"MONO"}},
             {{"FL", "FR"}, {"MONO"}, {"MONO"}},
             {{"FL", "FR"}, {"FC", "LFE"}, {"FC", "LFE"}},
             {{"FL", "FR", "FC"}, eight, {"FL", "FR", "FC"}},
             {{"FL", "FR", "FC", "LFE"}, eight, {"FL", "FR", "FC", "LFE"}},
             // Surround channels may have other names.
             {{"FL", "FR", "RL", "RR"}, eight, eight},
             {{"FL", "FR", "RL", "RR"}, {"FL", "FR", "SL", "SR"}, {"FL", "FR", "SL", "SR"}},
             // A channel without a position may be anything.
             {{"FL", "FR"}, {"AUX0", "AUX1", "AUX2"}, {"AUX0", "AUX1", "AUX2"}},
             {{"AUX0", "AUX1"}, eight, eight},
             {{}, eight, eight},
         }) {
        const auto areMade = areMadeFromOthers(now.output, now.given);
        std::vector<std::string> kept;
        for (std::size_t i = 0; i < now.output.size(); ++i) {
            if (!areMade.at(i)) {
                kept.push_back(now.output[i]);
            }
        }
        EXPECT_EQ(kept, now.kept);
    }
}

} // namespace
} // namespace vantoro::testing

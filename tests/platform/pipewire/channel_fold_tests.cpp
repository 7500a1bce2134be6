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
    std::array<float, 16> surround{};
    const auto found = std::ranges::find(tapChannels, GetParam().channel);
    surround.at(8 + static_cast<std::size_t>(found - tapChannels.begin())) = 1;
    std::array<float, 4> stereo{9, 9, 9, 9};
    foldToStereo(surround, stereo);
    EXPECT_EQ(stereo[0], 0);
    EXPECT_EQ(stereo[1], 0);
    EXPECT_FLOAT_EQ(stereo[2], GetParam().left);
    EXPECT_FLOAT_EQ(stereo[3], GetParam().right);
}

constexpr float low = 0.70710678F;

INSTANTIATE_TEST_SUITE_P(Channels, FoldToStereo,
                         ::testing::Values(FoldCase{"FL", 1, 0}, FoldCase{"FR", 0, 1},
                                           FoldCase{"FC", low, low}, FoldCase{"LFE", 0, 0},
                                           FoldCase{"RL", low, 0}, FoldCase{"RR", 0, low},
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
                                 {{"FL"}, {"FR"}, {"FC"}, {"LFE"}, {"RL"}, {"RR"}}},
                      TargetCase{{"FL", "FR", "MONO"}, {{"FL"}, {"FR"}, {"FC"}}},
                      TargetCase{{"FLC", "FRC", "RC", "LFE2", "TFL", "TFR"},
                                 {{"FL"}, {"FR"}, {"SL", "SR"}, {"LFE"}, {"SL"}, {"SR"}}}));

} // namespace

} // namespace vantoro::pipewire

// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/samples/input_fold.h"

#include <limits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using namespace capture;

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::FloatNear;

/// The output for inputs at constant levels.
std::vector<float> folded(InputFold& fold, const std::vector<float>& levels,
                          std::size_t frames = 4) {
    std::vector<std::vector<float>> samples;
    for (const float level : levels) {
        samples.emplace_back(frames, level);
    }
    const std::vector<std::span<const float>> inputs(samples.begin(), samples.end());
    std::vector<float> mono(frames, 99);
    fold.fold(inputs, mono);
    return mono;
}

TEST(InputFold, leavesASingleInputAsItIs) {
    InputFold fold;
    EXPECT_THAT(folded(fold, {0.5F}), Each(0.5F));
    EXPECT_THAT(folded(fold, {0.0001F}), Each(0.0001F));
}

TEST(InputFold, countsOnlyInputsThatWereHeardFromTheirFirstSampleOn) {
    struct Case {
        std::vector<float> levels;
        float expected;
    };

    for (const Case& now : std::vector<Case>{
             {{0.5F, 0, 0, 0, 0, 0, 0, 0}, 0.5F}, // one microphone on one of eight inputs
             {{0, 0, 0, 0, 0, 0.5F, 0, 0}, 0.5F}, // on any input
             {{0.5F, 0.5F}, 0.5F},                // the sides of a stereo microphone
             {{0.5F, 0.1F}, 0.3F},                // two heard inputs
             {{0.5F, 0.004F}, 0.504F},            // crosstalk
             {{0.05F, 0.0009F}, 0.0509F},         // noise of an open input
             {{0.05F, 0.001F}, 0.0255F},          // loud enough to count
             {{0.5F, -0.5F, 0, 0}, 0},            // opposite phases cancel
             {{0, 0}, 0},
         }) {
        InputFold fold;
        EXPECT_THAT(folded(fold, now.levels), Each(FloatNear(now.expected, 1e-6F)));
    }
}

TEST(InputFold, heardInputCountsFromThenOn) {
    InputFold fold;
    folded(fold, {0.5F, 0.5F, 0});
    EXPECT_THAT(folded(fold, {0.5F, 0, 0}), Each(0.25F));
    EXPECT_THAT(folded(fold, {0, 0, 0.0009F}), Each(FloatNear(0.00045F, 1e-8F)));
}

TEST(InputFold, newlyHeardInputChangesTheLevelDuringOnePiece) {
    InputFold fold;
    EXPECT_THAT(folded(fold, {0.5F, 0}), Each(0.5F));
    EXPECT_THAT(folded(fold, {0.5F, 0.5F}), ElementsAre(1, 0.875F, 0.75F, 0.625F));
    EXPECT_THAT(folded(fold, {0.5F, 0.5F}), Each(0.5F));
}

TEST(InputFold, silenceAtTheBeginningDecidesNothing) {
    InputFold fold;
    folded(fold, {0, 0});
    EXPECT_THAT(folded(fold, {0.5F, 0.5F}), Each(0.5F));
}

TEST(InputFold, nonFiniteSamplesAreNotHeard) {
    InputFold fold;
    EXPECT_THAT(folded(fold, {std::numeric_limits<float>::quiet_NaN(), 0.5F}), Each(0.5F));
    EXPECT_THAT(folded(fold, {std::numeric_limits<float>::infinity(), 0.5F}), Each(0.5F));
    EXPECT_THAT(folded(fold, {0, 0.5F}), Each(0.5F));
}

TEST(InputFold, takesAsManyInputsAsAnInterfaceCanHaveAndEmptyPieces) {
    InputFold fold;
    EXPECT_THAT(folded(fold, std::vector<float>(InputFold::maximumInputs, 0.25F)), Each(0.25F));
    EXPECT_TRUE(folded(fold, {0.5F, 0.5F}, 0).empty());
}

} // namespace
} // namespace vantoro::testing

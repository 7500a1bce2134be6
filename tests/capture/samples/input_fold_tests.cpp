// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/samples/input_fold.h"

#include <limits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantoro::capture {

namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::FloatNear;

/// Each input at one level for a piece of some frames; what becomes of it.
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
             {{0.5F, 0, 0, 0, 0, 0, 0, 0}, 0.5F}, // one microphone in one of eight
             {{0, 0, 0, 0, 0, 0.5F, 0, 0}, 0.5F}, // whichever
             {{0.5F, 0.5F}, 0.5F},                // the sides of a stereo microphone
             {{0.5F, 0.1F}, 0.3F},                // two that are heard
             {{0.5F, 0.004F}, 0.504F},            // what comes over from a neighbour
             {{0.05F, 0.0009F}, 0.0509F},         // an open input's noise
             {{0.05F, 0.001F}, 0.0255F},          // loud enough to be somebody
             {{0.5F, -0.5F, 0, 0}, 0},            // against each other, as they are
             {{0, 0}, 0},
         }) {
        InputFold fold;
        EXPECT_THAT(folded(fold, now.levels), Each(FloatNear(now.expected, 1e-6F)));
    }
}

TEST(InputFold, whoHasBeenHeardCountsForGood) {
    InputFold fold;
    folded(fold, {0.5F, 0.5F, 0});
    EXPECT_THAT(folded(fold, {0.5F, 0, 0}), Each(0.25F));
    EXPECT_THAT(folded(fold, {0, 0, 0.0009F}), Each(FloatNear(0.00045F, 1e-8F)));
}

TEST(InputFold, whoIsHeardLaterChangesTheLevelInTheCourseOfOnePiece) {
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

TEST(InputFold, whatIsNoNumberIsNotHeard) {
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

} // namespace vantoro::capture

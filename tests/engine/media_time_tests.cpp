// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/media_time.h"

#include <gtest/gtest.h>

#include "engine/recorder/audio_recorder.h"

namespace vantoro::testing {
namespace {

TEST(MediaTime, defaultIsInvalidAndComparesWithNothing) {
    const MediaTime invalid;
    EXPECT_FALSE(invalid.isValid());
    EXPECT_FALSE(invalid == invalid);
    EXPECT_FALSE(invalid < zeroTime);
    EXPECT_FALSE(zeroTime < invalid);
}

TEST(MediaTime, equalAcrossTimescales) {
    EXPECT_EQ((MediaTime{600, 600}), (MediaTime{48000, 48000}));
    EXPECT_LT((MediaTime{599, 600}), (MediaTime{48000, 48000}));
}

TEST(MediaTime, comparesExactlyWhereDoublesWouldNot) {
    const MediaTime late{9'007'199'254'740'993, 1'000'000'000};
    const MediaTime later{9'007'199'254'740'994, 1'000'000'000};
    EXPECT_LT(late, later);
}

TEST(MediaTime, roundsToTheNearestUnit) {
    EXPECT_EQ((MediaTime{1, 3}).inUnitsOf(48000), 16000);
    EXPECT_EQ((MediaTime{2, 3}).inUnitsOf(1), 1);
    EXPECT_EQ((MediaTime{-2, 3}).inUnitsOf(1), -1);
    EXPECT_EQ((MediaTime{10'000'000'010'417, 1'000'000'000}).inUnitsOf(48000), 480'000'001);
}

TEST(MediaTime, isAlsoToldInSeconds) {
    EXPECT_EQ((MediaTime{72000, 48000}).seconds(), 1.5);
    EXPECT_EQ(MediaTime{}.seconds(), 0);
}

TEST(MediaTime, checkpointsAreOneAndTenSeconds) {
    EXPECT_EQ(AudioRecorder::initialCheckpointInterval.value, 600);
    EXPECT_EQ(AudioRecorder::initialCheckpointInterval.timescale, 600);
    EXPECT_EQ(AudioRecorder::checkpointInterval.value, 6000);
    EXPECT_EQ(AudioRecorder::checkpointInterval.timescale, 600);
}

} // namespace
} // namespace vantoro::testing

// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/writing/track_timeline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <vector>

namespace vantoro::testing {
namespace {

using namespace media;

struct Step {
    std::int64_t time;
    std::int64_t frames;
    Placement expected;
};

struct Case {
    const char* name;
    std::vector<Step> steps;
};

class TrackTimelineCases : public ::testing::TestWithParam<Case> {};

TEST_P(TrackTimelineCases, placesEachBuffer) {
    TrackTimeline timeline;
    std::int64_t position = 0;
    for (const Step& step : GetParam().steps) {
        const Placement placement = timeline.place(step.time, step.frames);
        EXPECT_EQ(placement, step.expected) << "at " << step.time;
        position += placement.silence + placement.take;
        EXPECT_EQ(timeline.position(), position);
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, TrackTimelineCases,
    ::testing::Values(
        Case{"contiguous", {{0, 1024, {0, 0, 1024}}, {1024, 7, {0, 0, 7}}, {1031, 1, {0, 0, 1}}}},
        Case{"aSingleFrameIsABufferToo", {{0, 1, {0, 0, 1}}, {480, 480, {0, 0, 480}}}},
        Case{"lateFirstBuffer", {{1, 480, {1, 0, 480}}}},
        Case{"veryLateFirstBuffer", {{480000, 480, {480000, 0, 480}}}},
        Case{"firstBufferBeforeTheSession", {{-100, 480, {0, 100, 380}}}},
        Case{"whollyBeforeTheSession", {{-500, 480, {0, 480, 0}}, {10, 480, {10, 0, 480}}}},
        Case{"gapUpToTheToleranceIsNone", {{0, 480, {0, 0, 480}}, {1440, 480, {0, 0, 480}}}},
        Case{"gapBeyondIsFilledExactly", {{0, 480, {0, 0, 480}}, {1441, 480, {961, 0, 480}}}},
        Case{"overlapUpToTheToleranceIsNone", {{0, 1920, {0, 0, 1920}}, {960, 480, {0, 0, 480}}}},
        Case{"overlapBeyondIsLeftOut", {{0, 1920, {0, 0, 1920}}, {959, 1000, {0, 961, 39}}}},
        Case{"whollyOverlapping",
             {{0, 9600, {0, 0, 9600}}, {100, 480, {0, 480, 0}}, {9360, 480, {0, 240, 240}}}},
        Case{"smallStepsDoNotAddUp",
             {{0, 480, {0, 0, 480}}, {980, 480, {0, 0, 480}}, {1960, 480, {1000, 0, 480}}}}),
    [](const auto& test) { return test.param.name; });

TEST(TrackTimeline, fillingIsExactAndSoIsTheNextBuffer) {
    TrackTimeline timeline;
    timeline.place(0, 480);
    EXPECT_EQ(timeline.fillTo(480), 0);
    EXPECT_EQ(timeline.fillTo(1000), 520);
    EXPECT_EQ(timeline.place(1010, 480), (Placement{10, 0, 480}));
    EXPECT_EQ(timeline.fillTo(5), 0);
    EXPECT_EQ(timeline.position(), 1490);
}

TEST(TrackTimeline, aLongerTrackIsNotFilled) {
    TrackTimeline timeline;
    timeline.place(0, 480);
    EXPECT_EQ(timeline.fillTo(480), 0);
    EXPECT_EQ(timeline.fillTo(100), 0);
    EXPECT_EQ(timeline.place(980, 480), (Placement{0, 0, 480})) << "stamps may wander";
    EXPECT_EQ(timeline.fillTo(961), 1);
    EXPECT_EQ(timeline.position(), 961);
}

TEST(TrackTimeline, aBufferTooLateForAFilledTrackIsDropped) {
    TrackTimeline timeline;
    timeline.fillTo(1000);
    EXPECT_EQ(timeline.place(400, 480), (Placement{0, 480, 0}));
    EXPECT_EQ(timeline.place(880, 480), (Placement{0, 120, 360}));
}

TEST(TrackTimeline, refusesAnImpossibleGap) {
    TrackTimeline timeline;
    EXPECT_THROW(timeline.place(172'800'001, 480), std::runtime_error);
    EXPECT_EQ(timeline.position(), 0);
    EXPECT_EQ(timeline.place(172'800'000, 480).silence, 172'800'000);
}

class ClockDrift : public ::testing::TestWithParam<double> {};

TEST_P(ClockDrift, staysWithin20MillisecondsOfTheTimeStampsForFourHours) {
    constexpr std::int64_t fourHours = 4LL * 3600 * 48000;
    const double speed = 1 + (GetParam() * 1e-6);
    TrackTimeline timeline;
    for (std::int64_t delivered = 0; delivered < fourHours; delivered += 1024) {
        const auto stamp = std::llround(static_cast<double>(delivered) * speed);
        const Placement placement = timeline.place(stamp, 1024);
        const std::int64_t landed = timeline.position() - placement.take;
        ASSERT_LE(std::abs(landed - (stamp + placement.skip)), TrackTimeline::tolerance);
    }
}

INSTANTIATE_TEST_SUITE_P(PartsPerMillion, ClockDrift, ::testing::Values(-200.0, 0.0, 200.0));

} // namespace
} // namespace vantoro::testing

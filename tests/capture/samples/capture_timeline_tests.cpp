// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/samples/capture_timeline.h"

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using namespace capture;

constexpr std::int64_t start = 4800000;
constexpr CaptureTimeline::FeedId tapA = 1;
constexpr CaptureTimeline::FeedId tapB = 2;
constexpr CaptureTimeline::FeedId mic = 3;

Stamp stampAt(std::int64_t position, std::uint32_t frames) {
    return {.nanoseconds = static_cast<std::uint64_t>(position) * 62500 / 3, .frames = frames};
}

class Timeline : public ::testing::Test {
protected:
    struct Block {
        AudioLevelSource source;
        std::int64_t position;
        std::size_t frames;
    };

    void SetUp() override { timeline.begin(start); }

    std::int64_t place(CaptureTimeline::FeedId tap, std::int64_t position, std::uint32_t frames,
                       float value) {
        const std::vector<float> samples(frames, value);
        const std::array<std::span<const float>, 2> sides{samples, samples};
        return timeline.place(tap, stampAt(position, frames),
                              std::span(sides).first(tap == mic ? 1 : 2));
    }

    void emitAll(std::int64_t upTo) {
        timeline.emitAll(upTo, [this](AudioLevelSource source, std::int64_t position,
                                      std::span<const float> planes, std::size_t frames) {
            blocks.push_back({source, position, frames});
            auto& line = source == AudioLevelSource::systemAudio ? system : microphone;
            line.insert(line.end(), planes.begin(),
                        planes.begin() + static_cast<std::ptrdiff_t>(frames)); // the left side
        });
    }

    CaptureTimeline timeline;
    std::vector<Block> blocks;
    std::vector<float> system; // since the start
    std::vector<float> microphone;
};

TEST_F(Timeline, mixesTapsAtTheirStamps) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start);
    timeline.addFeed(tapB, AudioLevelSource::systemAudio, start);
    place(tapA, start, 300, 1);
    place(tapB, start + 100, 100, 2);
    emitAll(start + 300);
    ASSERT_EQ(system.size(), 300U);
    EXPECT_EQ(system[99], 1);
    EXPECT_EQ(system[100], 3);
    EXPECT_EQ(system[199], 3);
    EXPECT_EQ(system[200], 1);
}

TEST_F(Timeline, countsFramesWhileStampsJitter) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start);
    place(tapA, start, 100, 1);
    EXPECT_EQ(place(tapA, start + 190, 100, 1), 90);
    EXPECT_EQ(place(tapA, start + 150, 100, 1), -50);
    emitAll(start + 300);
    EXPECT_EQ(system, std::vector<float>(300, 1));
}

TEST_F(Timeline, usesStampsBeforeTheStart) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start);
    place(tapA, start - 1900, 1900, 1); // more than time passed
    EXPECT_EQ(place(tapA, start - 1000, 1000, 1), 0);
    EXPECT_EQ(place(tapA, start, 1000, 1), 0);
    EXPECT_EQ(place(tapA, start + 900, 1000, 1), -100) << "counted from then on";
}

TEST_F(Timeline, fillsALongGapWithSilence) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start);
    place(tapA, start, 100, 1);
    EXPECT_EQ(place(tapA, start + 100 + CaptureTimeline::tolerance + 1, 100, 1), 0);
    emitAll(timeline.end(start));
    ASSERT_EQ(system.size(), 201U + CaptureTimeline::tolerance);
    EXPECT_EQ(system[100], 0);
    EXPECT_EQ(system[100 + CaptureTimeline::tolerance], 0);
    EXPECT_EQ(system[101 + CaptureTimeline::tolerance], 1);
}

TEST_F(Timeline, replacesLostFramesBySilence) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start);
    place(tapA, start, 500, 1);
    std::int64_t position = start + 500;
    std::vector<float> expected(500, 1);
    for (const std::int64_t lost : {1, 100, 1024, 480000}) {
        EXPECT_EQ(timeline.lose(tapA, lost), lost);
        // Later pieces follow the count despite jitter.
        EXPECT_EQ(place(tapA, position + lost + 40, 500, 2), 40);
        position += lost + 500;
        expected.insert(expected.end(), static_cast<std::size_t>(lost), 0);
        expected.insert(expected.end(), 500, 2);
    }
    EXPECT_EQ(timeline.end(position), position);
    emitAll(position);
    EXPECT_EQ(system, expected);
}

TEST_F(Timeline, countsSimultaneousLossesOnce) {
    for (const auto tap : {tapA, tapB}) {
        timeline.addFeed(tap, AudioLevelSource::systemAudio, start);
        place(tap, start, 100, 1);
    }
    timeline.addFeed(mic, AudioLevelSource::microphone, start);
    place(mic, start, 100, 1);
    EXPECT_EQ(timeline.lose(tapA, 1000), 1000);
    EXPECT_EQ(timeline.lose(tapB, 1300), 300);
    EXPECT_EQ(timeline.lose(mic, 1000), 1000);
    EXPECT_EQ(timeline.lose(tapA, 200), 0);
    EXPECT_EQ(timeline.lose(tapA, 200), 100);
}

TEST_F(Timeline, ignoresLossesBeforeTheStart) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start - 500);
    place(tapA, start - 500, 100, 1);
    EXPECT_EQ(timeline.lose(tapA, 300), 0);
    EXPECT_EQ(timeline.lose(tapA, 300), 200);
}

TEST_F(Timeline, toleratesThirtyMillisecondsBehindTheStamps) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start);
    place(tapA, start, 100, 1);
    EXPECT_EQ(place(tapA, start + 100 + 1440, 100, 1), 1440);
    EXPECT_EQ(place(tapA, start + 200 + 1441, 100, 1), 0);
}

TEST_F(Timeline, toleratesAMillisecondInSilenceEitherWay) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start);
    place(tapA, start, 1000, 1);
    EXPECT_EQ(place(tapA, start + 1000 - 48, 100, 0), -48);
    EXPECT_EQ(place(tapA, start + 1100 + 48, 100, 0), 48);
    EXPECT_EQ(place(tapA, start + 1200 + 49, 100, 0), 0);
    EXPECT_EQ(place(tapA, start + 1349 - 49, 100, 0), 0);
}

TEST_F(Timeline, neverOverlapsSoundThatIsAheadOfItsStamps) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start);
    place(tapA, start, 4000, 1);
    place(tapA, start + 100, 100, 1);
    emitAll(start + 4100);
    EXPECT_EQ(system, std::vector<float>(4100, 1));
}

TEST_F(Timeline, shortensSilenceThatIsAheadOfItsStamps) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start);
    place(tapA, start, 4000, 1);
    EXPECT_EQ(place(tapA, start + 3000, 2000, 0), 0);
    place(tapA, start + 5000, 100, 1);
    emitAll(start + 5100);
    EXPECT_EQ(system[3999], 1);
    EXPECT_EQ(system[4000], 0);
    EXPECT_EQ(system[4999], 0);
    EXPECT_EQ(system[5000], 1);
}

TEST_F(Timeline, lengthensSilenceThatIsBehindItsStamps) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start);
    place(tapA, start, 100, 1);
    EXPECT_EQ(place(tapA, start + 100 + CaptureTimeline::toleranceInSilence + 1, 100, 0), 0);
}

struct Onset {
    std::int64_t stampedLater; // than the end of the silence before the sound, by count
    std::int64_t behind;       // after the sound is placed
};

class TimelineOnset : public Timeline, public ::testing::WithParamInterface<Onset> {};

TEST_P(TimelineOnset, isAtTheStampIfItFollowsSilence) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start);
    place(tapA, start, 1000, 1);
    place(tapA, start + 1000, 2000, 0);
    const auto [stampedLater, behind] = GetParam();
    EXPECT_EQ(place(tapA, start + 3000 + stampedLater, 2000, 2), behind);
    emitAll(start + 5000);
    const auto onset = std::ranges::find(system, 2.0F) - system.begin();
    EXPECT_EQ(onset, 3000 + stampedLater - behind);
    EXPECT_EQ(std::ranges::count(system, 1.0F), 1000);
}

INSTANTIATE_TEST_SUITE_P(Stamps, TimelineOnset,
                         ::testing::Values(Onset{48, 48}, Onset{49, 0}, Onset{1500, 0}, Onset{0, 0},
                                           Onset{-48, -48}, Onset{-49, 0}, Onset{-2000, 0},
                                           Onset{-2100, -100})); // does not overlap the first sound

TEST_F(Timeline, onsetFollowsWhatWasEmitted) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start);
    place(tapA, start, 3000, 0);
    emitAll(start + 2048);
    EXPECT_EQ(place(tapA, start + 2000, 1000, 1), -48);
    emitAll(start + 3048);
    EXPECT_EQ(std::ranges::find(system, 1.0F) - system.begin(), 2048);
    EXPECT_EQ(std::ranges::count(system, 1.0F), 1000);
}

TEST_F(Timeline, onsetIsNotDelayedByWhatWasEmittedAfterAStall) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start);
    place(tapA, start, 3000, 0);
    emitAll(start + 4000);
    EXPECT_EQ(place(tapA, start + 2900, 2000, 1), -100);
    emitAll(start + 5000);
    EXPECT_EQ(std::ranges::find(system, 1.0F) - system.begin(), 4000);
    EXPECT_EQ(std::ranges::count(system, 1.0F), 1000);
}

TEST_F(Timeline, soundAfterTheOnsetIsCounted) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start);
    place(tapA, start, 1000, 0);
    place(tapA, start + 700, 1000, 1);
    EXPECT_EQ(place(tapA, start + 1700 + 100, 1000, 1), 100);
    EXPECT_EQ(place(tapA, start + 2700 - 100, 1000, 1), -100);
    emitAll(start + 3700);
    EXPECT_EQ(std::ranges::count(system, 1.0F), 3000);
}

TEST_F(Timeline, leavesOutWhatWasCapturedBeforeTheBeginning) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start - 500);
    place(tapA, start - 60, 100, 1);
    emitAll(start + 100);
    std::vector<float> expected(100, 0);
    std::fill_n(expected.begin(), 40, 1.0F);
    EXPECT_EQ(system, expected);
}

TEST_F(Timeline, waitsForTheSlowestTap) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start);
    timeline.addFeed(mic, AudioLevelSource::microphone, start);
    place(tapA, start, 1000, 1);
    EXPECT_EQ(timeline.horizon(start + 1000), start);
    place(mic, start, 400, 1);
    EXPECT_EQ(timeline.horizon(start + 1000), start + 400);
    place(mic, start + 400, 700, 1);
    EXPECT_EQ(timeline.horizon(start + 1100), start + 1000);
}

TEST_F(Timeline, waitsForWhatFollowsSilence) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start);
    place(tapA, start, 1000, 1);
    place(tapA, start + 1000, 400, 0);
    EXPECT_EQ(timeline.horizon(start + 1400), start + 1000);
    place(tapA, start + 1400, 300, 0);
    EXPECT_EQ(timeline.horizon(start + 1700), start + 1400);
    place(tapA, start + 1700, 300, 1);
    EXPECT_EQ(timeline.horizon(start + 2000), start + 2000);
    EXPECT_EQ(timeline.end(start + 2000), start + 2000);
}

TEST_F(Timeline, waitsNoLongerThanItsPatience) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start);
    timeline.addFeed(mic, AudioLevelSource::microphone, start);
    place(tapA, start, 60000, 1);
    EXPECT_EQ(timeline.horizon(start + 47999), start);
    EXPECT_EQ(timeline.horizon(start + 48000), start + 60000);
    timeline.removeFeed(tapA);
    EXPECT_EQ(timeline.horizon(start + 90000), start + 90000 - CaptureTimeline::patience);
}

TEST_F(Timeline, goesOnInSilenceWithoutAnyTap) {
    EXPECT_EQ(timeline.horizon(start + 60000), start + 60000 - CaptureTimeline::patience);
    EXPECT_EQ(timeline.end(start + 60000), start + 60000);
}

TEST_F(Timeline, endsWithItsTapsUnlessTheyAreATenthOfASecondBehind) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start);
    EXPECT_EQ(timeline.end(start + 4800), start);
    EXPECT_EQ(timeline.end(start + 4801), start + 4801);
}

TEST_F(Timeline, emitsWholeBlocksWhileItGoesOn) {
    std::vector<std::int64_t> positions;
    const auto note = [&](AudioLevelSource, std::int64_t position, std::span<const float>,
                          std::size_t frames) {
        EXPECT_EQ(frames, 1024U);
        positions.push_back(position - start);
    };
    timeline.emitBlocks(start + 1023, note);
    EXPECT_TRUE(positions.empty());
    timeline.emitBlocks(start + 1024, note);
    EXPECT_EQ(positions, (std::vector<std::int64_t>{0, 0}));
    timeline.emitAll(start + 1024, note);
    EXPECT_EQ(positions.size(), 2U);
}

TEST_F(Timeline, losesAFirstSoundThatIsLaterThanItsTolerance) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start);
    emitAll(start + 2048);
    place(tapA, start + 2048 - 1440, 100, 1);
    timeline.addFeed(tapB, AudioLevelSource::systemAudio, start + 2048);
    place(tapB, start + 2048 - 1441, 100, 2);
    emitAll(start + 2148);
    EXPECT_EQ(system[2048], 1);
    EXPECT_EQ(system[2147], 1);
}

TEST_F(Timeline, delaysTheFirstSoundOfALateTapInsteadOfLosingIt) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start);
    place(tapA, start, 2048, 0.5F);
    emitAll(start + 2048);
    timeline.addFeed(tapB, AudioLevelSource::systemAudio, start + 2048);
    place(tapB, start + 1500, 100, 1);
    place(tapA, start + 2048, 200, 0.5F);
    emitAll(start + 2248);
    EXPECT_EQ(system[2047], 0.5F);
    EXPECT_EQ(system[2048], 1.5F);
    EXPECT_EQ(system[2147], 1.5F);
    EXPECT_EQ(system[2148], 0.5F);
}

TEST_F(Timeline, placesSoundAfterAStallAtItsStamps) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start);
    place(tapA, start, 1000, 1);
    emitAll(start + 98000);
    EXPECT_EQ(place(tapA, start + 97000, 2000, 1), 0);
    emitAll(start + 99000);
    EXPECT_EQ(system[97999], 0);
    EXPECT_EQ(system[98000], 1);
    EXPECT_EQ(system[98999], 1);
}

TEST_F(Timeline, emitsBothSourcesInTurnWithEqualLengths) {
    timeline.addFeed(mic, AudioLevelSource::microphone, start);
    place(mic, start, 2500, 1);
    emitAll(timeline.end(start + 2500));
    ASSERT_EQ(blocks.size(), 6U);
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        EXPECT_EQ(blocks[i].source,
                  i % 2 == 0 ? AudioLevelSource::systemAudio : AudioLevelSource::microphone);
        EXPECT_EQ(blocks[i].position, start + static_cast<std::int64_t>(i / 2 * 1024));
    }
    EXPECT_EQ(blocks[0].frames, 1024U);
    EXPECT_EQ(blocks[5].frames, 452U);
    EXPECT_EQ(system, std::vector<float>(2500, 0));
    EXPECT_EQ(microphone, std::vector<float>(2500, 1));
}

TEST_F(Timeline, keepsTheSoundOfARemovedTap) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start);
    place(tapA, start, 100, 1);
    timeline.removeFeed(tapA);
    emitAll(start + 100);
    EXPECT_EQ(system, std::vector<float>(100, 1));
}

TEST_F(Timeline, countsNonFiniteSamplesAsSilence) {
    timeline.addFeed(tapA, AudioLevelSource::systemAudio, start);
    timeline.addFeed(tapB, AudioLevelSource::systemAudio, start);
    place(tapA, start, 10, std::numeric_limits<float>::quiet_NaN());
    place(tapB, start, 10, 0.5F);
    emitAll(start + 10);
    EXPECT_EQ(system, std::vector<float>(10, 0.5F));
}

} // namespace
} // namespace vantoro::testing

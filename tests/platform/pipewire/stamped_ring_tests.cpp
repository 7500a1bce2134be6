// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/stamped_ring.h"

#include <thread>

#include <gtest/gtest.h>

namespace vantoro::pipewire {

namespace {

/// A piece whose samples count on from `firstFrame`, a different count for each channel.
bool writeCounting(StampedRing& ring, std::uint64_t firstFrame, std::uint32_t frames) {
    const Stamp stamp{.nanoseconds = firstFrame, .frames = frames, .clockId = 7};
    return ring.write(stamp, [&](std::span<float> target, std::size_t done) {
        for (std::size_t i = 0; i < target.size(); ++i) {
            const std::uint64_t frame = firstFrame + done + (i / ring.channels());
            target[i] = static_cast<float>((frame % 100000 * 10) + (i % ring.channels()));
        }
    });
}

/// How many samples of the piece are not what `writeCounting` wrote.
std::size_t wrongSamples(const Stamp& stamp, const std::vector<float>& samples,
                         std::size_t channels) {
    std::size_t wrong = samples.size() == stamp.frames * channels ? 0U : 1U;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const std::uint64_t frame = stamp.nanoseconds + (i / channels);
        wrong += samples[i] != static_cast<float>((frame % 100000 * 10) + (i % channels)) ? 1U : 0U;
    }
    return wrong;
}

TEST(StampedRing, givesPiecesBackWithTheirStamps) {
    StampedRing ring(2, 100, 8);
    ASSERT_TRUE(writeCounting(ring, 5, 30));
    ASSERT_TRUE(writeCounting(ring, 35, 10));
    EXPECT_EQ(ring.pendingFrames(), 40U);
    Stamp stamp;
    std::vector<float> samples;
    ASSERT_TRUE(ring.read(stamp, samples));
    EXPECT_EQ(stamp.nanoseconds, 5U);
    EXPECT_EQ(stamp.clockId, 7U);
    EXPECT_EQ(wrongSamples(stamp, samples, 2), 0U);
    ASSERT_TRUE(ring.read(stamp, samples));
    EXPECT_EQ(stamp.frames, 10U);
    EXPECT_EQ(wrongSamples(stamp, samples, 2), 0U);
    EXPECT_FALSE(ring.read(stamp, samples));
}

TEST(StampedRing, refusesAPieceWholeWhenThereIsNoRoom) {
    StampedRing ring(1, 50, 8);
    ASSERT_TRUE(writeCounting(ring, 0, 40));
    EXPECT_FALSE(writeCounting(ring, 40, 11));
    EXPECT_TRUE(writeCounting(ring, 40, 10));
    Stamp stamp;
    std::vector<float> samples;
    ASSERT_TRUE(ring.read(stamp, samples));
    EXPECT_TRUE(writeCounting(ring, 50, 40));
}

TEST(StampedRing, refusesMorePiecesThanItHasStampsFor) {
    StampedRing ring(1, 50, 2);
    EXPECT_TRUE(writeCounting(ring, 0, 1));
    EXPECT_TRUE(writeCounting(ring, 1, 1));
    EXPECT_FALSE(writeCounting(ring, 2, 1));
}

TEST(StampedRing, tellsHowMuchIsMissingBeforeAPiece) {
    StampedRing ring(1, 50, 8);
    ASSERT_TRUE(writeCounting(ring, 0, 40));
    ASSERT_FALSE(writeCounting(ring, 40, 20));
    ring.lose(20);
    ASSERT_FALSE(writeCounting(ring, 60, 11));
    ring.lose(11);
    Stamp stamp;
    std::vector<float> samples;
    ASSERT_TRUE(ring.read(stamp, samples));
    EXPECT_EQ(stamp.lostFrames, 0U);
    ASSERT_TRUE(writeCounting(ring, 71, 10));
    ASSERT_TRUE(writeCounting(ring, 81, 10));
    ASSERT_TRUE(ring.read(stamp, samples));
    EXPECT_EQ(stamp.lostFrames, 31U);
    EXPECT_EQ(stamp.frames, 10U);
    ASSERT_TRUE(ring.read(stamp, samples));
    EXPECT_EQ(stamp.lostFrames, 0U);
    EXPECT_FALSE(ring.read(stamp, samples));
}

TEST(StampedRing, tellsWhatIsMissingBehindTheLastPieceByOneOfNoFrames) {
    StampedRing ring(1, 50, 8);
    ASSERT_TRUE(writeCounting(ring, 0, 50));
    ring.lose(20);
    Stamp stamp;
    std::vector<float> samples;
    ASSERT_TRUE(ring.read(stamp, samples));
    EXPECT_EQ(stamp.lostFrames, 0U);
    ASSERT_TRUE(ring.read(stamp, samples));
    EXPECT_EQ(stamp.lostFrames, 20U);
    EXPECT_EQ(stamp.frames, 0U);
    EXPECT_TRUE(samples.empty());
    EXPECT_FALSE(ring.read(stamp, samples));
    ASSERT_TRUE(writeCounting(ring, 70, 10));
    ASSERT_TRUE(ring.read(stamp, samples));
    EXPECT_EQ(stamp.lostFrames, 0U) << "told once";
}

TEST(StampedRing, tellsEveryLossAtItsPlaceBetweenTwoThreads) {
    constexpr std::uint64_t total = 2000000;
    StampedRing ring(1, 1000, 16);
    std::jthread writer([&] {
        std::uint64_t frame = 0;
        for (std::uint32_t length = 1; frame < total; length = (length * 7 % 331) + 1) {
            if (!writeCounting(ring, frame, length)) {
                ring.lose(length);
            }
            frame += length;
        }
    });
    std::uint64_t next = 0;
    std::uint64_t lost = 0;
    std::size_t misplaced = 0;
    Stamp stamp;
    std::vector<float> samples;
    while (next < total) {
        if (!ring.read(stamp, samples)) {
            std::this_thread::yield();
            continue;
        }
        next += stamp.lostFrames;
        lost += stamp.lostFrames;
        misplaced += stamp.frames == 0 || stamp.nanoseconds == next ? 0U : 1U;
        next += stamp.frames;
    }
    EXPECT_EQ(misplaced, 0U);
    EXPECT_GT(lost, 0U);
}

TEST(StampedRing, hasRoomForAsManyPiecesAsBeforeWhenSomeWereRead) {
    StampedRing ring(1, 50, 2);
    Stamp stamp;
    std::vector<float> samples;
    for (int round = 0; round < 5; ++round) {
        EXPECT_TRUE(writeCounting(ring, 0, 1));
        EXPECT_TRUE(writeCounting(ring, 1, 1));
        EXPECT_FALSE(writeCounting(ring, 2, 1));
        EXPECT_TRUE(ring.read(stamp, samples));
        EXPECT_TRUE(writeCounting(ring, 2, 1));
        EXPECT_TRUE(ring.read(stamp, samples));
        EXPECT_TRUE(ring.read(stamp, samples));
    }
}

TEST(StampedRing, asksForAPieceInTwoPartsOnlyWhereItEnds) {
    StampedRing ring(1, 10, 4);
    std::vector<std::size_t> parts;
    const auto note = [&](std::span<float> target, std::size_t) { parts.push_back(target.size()); };
    Stamp stamp;
    std::vector<float> samples;
    ring.write({.frames = 6}, note);
    EXPECT_EQ(parts, (std::vector<std::size_t>{6}));
    ring.read(stamp, samples);
    ring.write({.frames = 5}, note);
    EXPECT_EQ(parts, (std::vector<std::size_t>{6, 4, 1}));
}

TEST(StampedRing, losesAndChangesNothingBetweenTwoThreads) {
    constexpr std::uint64_t total = 400000;
    StampedRing ring(2, 1000, 16);
    std::jthread writer([&] {
        std::uint64_t frame = 0;
        for (std::uint32_t length = 1; frame < total; length = (length * 7 % 331) + 1) {
            while (!writeCounting(ring, frame, length)) {
                std::this_thread::yield();
            }
            frame += length;
        }
    });
    std::uint64_t next = 0;
    std::size_t wrong = 0;
    Stamp stamp;
    std::vector<float> samples;
    while (next < total) {
        if (!ring.read(stamp, samples)) {
            std::this_thread::yield();
            continue;
        }
        wrong += stamp.nanoseconds == next ? 0U : 1U;
        wrong += wrongSamples(stamp, samples, 2);
        next += stamp.frames;
    }
    EXPECT_EQ(wrong, 0U);
}

} // namespace

} // namespace vantoro::pipewire

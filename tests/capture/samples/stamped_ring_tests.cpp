// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/samples/stamped_ring.h"

#include <fstream>
#include <thread>
#include <vector>

#include <unistd.h>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using namespace capture;

/// Writes a piece whose samples count up from `firstFrame`, differently in each channel.
bool writeCounting(StampedRing& ring, std::uint64_t firstFrame, std::uint32_t frames) {
    const Stamp stamp{.nanoseconds = firstFrame, .frames = frames, .clockId = 7};
    return ring.write(stamp, [&](WritablePlanes planes) {
        for (std::size_t channel = 0; channel < planes.size(); ++channel) {
            for (std::size_t i = 0; i < planes[channel].size(); ++i) {
                planes[channel][i] = static_cast<float>(((firstFrame + i) % 100000 * 10) + channel);
            }
        }
    });
}

using Samples = std::vector<std::vector<float>>; // planar

bool read(StampedRing& ring, Stamp& stamp, Samples& samples) {
    return ring.read([&](const Stamp& its, Planes planes) {
        stamp = its;
        samples.clear();
        for (const auto plane : planes) {
            samples.emplace_back(plane.begin(), plane.end());
        }
    });
}

/// How many samples of the piece differ from what `writeCounting` wrote.
std::size_t wrongSamples(const Stamp& stamp, const Samples& samples, std::size_t channels) {
    std::size_t wrong = samples.size() == channels ? 0U : 1U;
    for (std::size_t channel = 0; channel < samples.size(); ++channel) {
        wrong += samples[channel].size() == stamp.frames ? 0U : 1U;
        for (std::size_t i = 0; i < samples[channel].size(); ++i) {
            const std::uint64_t frame = stamp.nanoseconds + i;
            const auto expected = static_cast<float>((frame % 100000 * 10) + channel);
            wrong += samples[channel][i] != expected ? 1U : 0U;
        }
    }
    return wrong;
}

TEST(StampedRing, returnsPiecesWithTheirStamps) {
    StampedRing ring(2, 100, 8);
    ASSERT_TRUE(writeCounting(ring, 5, 30));
    ASSERT_TRUE(writeCounting(ring, 35, 10));
    EXPECT_EQ(ring.pendingFrames(), 40U);
    Stamp stamp;
    Samples samples;
    ASSERT_TRUE(read(ring, stamp, samples));
    EXPECT_EQ(stamp.nanoseconds, 5U);
    EXPECT_EQ(stamp.clockId, 7U);
    EXPECT_EQ(wrongSamples(stamp, samples, 2), 0U);
    ASSERT_TRUE(read(ring, stamp, samples));
    EXPECT_EQ(stamp.frames, 10U);
    EXPECT_EQ(wrongSamples(stamp, samples, 2), 0U);
    EXPECT_FALSE(read(ring, stamp, samples));
}

TEST(StampedRing, refusesAPieceWholeWhenThereIsNoRoom) {
    StampedRing ring(1, 50, 8);
    ASSERT_TRUE(writeCounting(ring, 0, 40));
    EXPECT_FALSE(writeCounting(ring, 40, 11));
    EXPECT_TRUE(writeCounting(ring, 40, 10));
    Stamp stamp;
    Samples samples;
    ASSERT_TRUE(read(ring, stamp, samples));
    EXPECT_TRUE(writeCounting(ring, 50, 40));
}

TEST(StampedRing, refusesMorePiecesThanItHasStampsFor) {
    StampedRing ring(1, 50, 2);
    EXPECT_TRUE(writeCounting(ring, 0, 1));
    EXPECT_TRUE(writeCounting(ring, 1, 1));
    EXPECT_FALSE(writeCounting(ring, 2, 1));
}

TEST(StampedRing, reportsTheLossBeforeAPiece) {
    StampedRing ring(1, 50, 8);
    ASSERT_TRUE(writeCounting(ring, 0, 40));
    ASSERT_FALSE(writeCounting(ring, 40, 20));
    ring.lose(20);
    ASSERT_FALSE(writeCounting(ring, 60, 11));
    ring.lose(11);
    Stamp stamp;
    Samples samples;
    ASSERT_TRUE(read(ring, stamp, samples));
    EXPECT_EQ(stamp.lostFrames, 0U);
    ASSERT_TRUE(writeCounting(ring, 71, 10));
    ASSERT_TRUE(writeCounting(ring, 81, 10));
    ASSERT_TRUE(read(ring, stamp, samples));
    EXPECT_EQ(stamp.lostFrames, 31U);
    EXPECT_EQ(stamp.frames, 10U);
    ASSERT_TRUE(read(ring, stamp, samples));
    EXPECT_EQ(stamp.lostFrames, 0U);
    EXPECT_FALSE(read(ring, stamp, samples));
}

TEST(StampedRing, reportsALossAfterTheLastPieceAsAnEmptyPiece) {
    StampedRing ring(1, 50, 8);
    ASSERT_TRUE(writeCounting(ring, 0, 50));
    ring.lose(20);
    Stamp stamp;
    Samples samples;
    ASSERT_TRUE(read(ring, stamp, samples));
    EXPECT_EQ(stamp.lostFrames, 0U);
    ASSERT_TRUE(read(ring, stamp, samples));
    EXPECT_EQ(stamp.lostFrames, 20U);
    EXPECT_EQ(stamp.frames, 0U);
    EXPECT_EQ(samples, Samples(1)) << "one empty channel";
    EXPECT_FALSE(read(ring, stamp, samples));
    ASSERT_TRUE(writeCounting(ring, 70, 10));
    ASSERT_TRUE(read(ring, stamp, samples));
    EXPECT_EQ(stamp.lostFrames, 0U) << "reported once";
}

TEST(StampedRing, reportsEveryLossAtItsPlaceBetweenTwoThreads) {
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
    Samples samples;
    while (next < total) {
        if (!read(ring, stamp, samples)) {
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
    Samples samples;
    for (int round = 0; round < 5; ++round) {
        EXPECT_TRUE(writeCounting(ring, 0, 1));
        EXPECT_TRUE(writeCounting(ring, 1, 1));
        EXPECT_FALSE(writeCounting(ring, 2, 1));
        EXPECT_TRUE(read(ring, stamp, samples));
        EXPECT_TRUE(writeCounting(ring, 2, 1));
        EXPECT_TRUE(read(ring, stamp, samples));
        EXPECT_TRUE(read(ring, stamp, samples));
    }
}

/// Writes a piece and returns the address of each channel, or nothing if refused.
std::vector<const float*> placesOf(StampedRing& ring, std::uint32_t frames) {
    std::vector<const float*> places;
    ring.write({.frames = frames}, [&](WritablePlanes planes) {
        for (const auto plane : planes) {
            EXPECT_EQ(plane.size(), frames);
            places.push_back(plane.data());
        }
    });
    return places;
}

void skipPiece(StampedRing& ring) {
    ASSERT_TRUE(ring.read([](const Stamp&, Planes) {}));
}

TEST(StampedRing, keepsPiecesContiguousAtTheRingsEnd) {
    StampedRing ring(2, 10, 4);
    const auto front = placesOf(ring, 4);
    EXPECT_EQ(placesOf(ring, 3), (std::vector{front[0] + 4, front[1] + 4}));
    skipPiece(ring);
    EXPECT_TRUE(placesOf(ring, 5).empty()) << "3 at the end and 4 at the front are free";
    EXPECT_EQ(placesOf(ring, 4), front);
    EXPECT_TRUE(placesOf(ring, 1).empty());
    skipPiece(ring);
    EXPECT_TRUE(placesOf(ring, 4).empty()) << "the skipped end is not free yet";
    EXPECT_EQ(placesOf(ring, 3), (std::vector{front[0] + 4, front[1] + 4}));
    skipPiece(ring);
    EXPECT_EQ(placesOf(ring, 3), (std::vector{front[0] + 7, front[1] + 7}));
}

TEST(StampedRing, startsAtItsFrontAgainOnceEmpty) {
    StampedRing ring(2, 100, 8);
    const auto front = placesOf(ring, 30);
    EXPECT_EQ(placesOf(ring, 30), (std::vector{front[0] + 30, front[1] + 30}));
    skipPiece(ring);
    EXPECT_EQ(placesOf(ring, 10), (std::vector{front[0] + 60, front[1] + 60}));
    EXPECT_EQ(ring.pendingFrames(), 40U);
    skipPiece(ring);
    skipPiece(ring);
    EXPECT_EQ(placesOf(ring, 100), front) << "with all of its room";
    EXPECT_EQ(ring.pendingFrames(), 100U);
}

/// This process's resident memory in kilobytes.
std::size_t residentKilobytes() {
    std::ifstream status("/proc/self/statm");
    std::size_t total = 0;
    std::size_t resident = 0;
    status >> total >> resident;
    return resident * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)) / 1024;
}

TEST(StampedRing, takesOnlyAsMuchMemoryAsItsLargestBacklog) {
    constexpr std::size_t frames = 48000UL * 60;
    const std::size_t before = residentKilobytes();
    StampedRing ring(2, frames, 65536, 48000); // 25 MB of address space
    for (int second = 0; second < 70; ++second) {
        for (std::uint64_t piece = 0; piece < 47; ++piece) {
            ASSERT_TRUE(writeCounting(ring, piece * 1024, 1024));
        }
        for (int piece = 0; piece < 47; ++piece) {
            skipPiece(ring);
        }
    }
    EXPECT_LT(residentKilobytes() - before, 4096U) << "a second is 376 kB, all of it 25 MB";
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
    Samples samples;
    while (next < total) {
        if (!read(ring, stamp, samples)) {
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
} // namespace vantoro::testing

// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/files/disk_room.h"

#include <limits>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using enum RoomAdvice;

constexpr int bothTracks = 288000; // b/s
constexpr int microphoneAlone = 96000;
constexpr std::uint64_t unlimited = std::numeric_limits<std::uint64_t>::max();

TEST(DiskRoomTest, followsFromWhatIsFreeAndWhatTheFinalFileNeeds) {
    struct Row {
        std::uint64_t available;
        std::int64_t recordedSeconds;
        int bitRate;
        RoomAdvice advice;
        std::int64_t minutesLeft;
    };

    // Both tracks take 38.25 kB/s, the final file 34 kB/s of everything recorded; the last 30
    // seconds and a MiB are reserved.
    for (const auto& row : {
             Row{46'000'000, 0, bothTracks, tell, 9},
             Row{47'000'000, 0, bothTracks, enough, 10},
             Row{12'000'000, 0, bothTracks, tell, 2},
             Row{4'000'000, 0, bothTracks, tell, 0},
             Row{3'000'000, 0, bothTracks, end, 0},
             Row{0, 0, bothTracks, end, 0},
             // The final file of an hour takes 122 MB.
             Row{125'000'000, 3600, bothTracks, end, 0},
             Row{126'000'000, 3600, bothTracks, tell, 0},
             Row{168'000'000, 3600, bothTracks, tell, 9},
             Row{169'000'000, 3600, bothTracks, enough, 10},
             // A single track leaves more room.
             Row{31'000'000, 0, microphoneAlone, enough, 10},
             Row{29'000'000, 0, microphoneAlone, tell, 9},
             Row{2'000'000, 0, microphoneAlone, end, 0},
             // The largest representable value.
             Row{unlimited, 0, bothTracks, enough, 2'127'652'142'295},
             Row{unlimited, 1'000'000'000, bothTracks, enough, 2'127'644'299'158},
         }) {
        EXPECT_EQ(diskRoom(row.available, std::chrono::seconds(row.recordedSeconds), row.bitRate),
                  (DiskRoom{row.advice, row.minutesLeft}))
            << row.available << " bytes after " << row.recordedSeconds << " s";
    }
}

TEST(DiskRoomTest, recordingMayStartIfHalfAMinuteFits) {
    EXPECT_TRUE(hasRoomToStart(unlimited, bothTracks));
    EXPECT_TRUE(hasRoomToStart(5'500'000, bothTracks));
    EXPECT_FALSE(hasRoomToStart(5'300'000, bothTracks));
    EXPECT_TRUE(hasRoomToStart(4'000'000, microphoneAlone));
    EXPECT_FALSE(hasRoomToStart(0, microphoneAlone));
    EXPECT_FALSE(hasRoomToStart(5'500'000, bothTracks, bothTracks));
    EXPECT_TRUE(hasRoomToStart(7'900'000, bothTracks, bothTracks));
}

TEST(DiskRoomTest, recordingThatEndsInTimeHasRoomForItsFinalFile) {
    // Only the recording fills the disk: first the warning, then the end.
    constexpr std::uint64_t disk = 60'000'000;
    constexpr std::uint64_t mostBytesPerSecond = 36'000 * 17 / 16;
    std::int64_t reported = -1;
    std::int64_t seconds = 1;
    for (;; seconds += 10) {
        const auto used = static_cast<std::uint64_t>(seconds) * mostBytesPerSecond;
        const auto advice = diskRoom(disk - used, std::chrono::seconds(seconds), bothTracks).advice;
        if (advice == tell && reported < 0) {
            reported = seconds;
        }
        if (advice == end) {
            break;
        }
    }
    EXPECT_GT(reported, 0);
    EXPECT_NEAR(static_cast<double>(seconds - reported), 600, 15);
    // Enough for the fragment in progress and the whole final file.
    const auto whole = static_cast<std::uint64_t>(seconds + 10);
    EXPECT_LT(whole * mostBytesPerSecond + whole * 32'000 * 17 / 16, disk);
}

} // namespace
} // namespace vantoro::testing

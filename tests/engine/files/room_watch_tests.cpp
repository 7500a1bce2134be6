// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/files/disk_room.h"

#include <vector>

#include <gtest/gtest.h>

#include "tests/engine/recorder/recorder_fixture.h"

namespace vantoro::testing {
namespace {

using enum RoomAdvice;

constexpr std::uint64_t million = 1'000'000;
constexpr MediaTime elevenSeconds{11 * 48000, 48000};

class RoomWatchTest : public ::testing::Test {
protected:
    CallLog log;
    MemoryFileSystem fileSystem{log};
    std::vector<DiskRoom> reported;
    DiskRoomCallback callback = [this](DiskRoom room) { reported.push_back(room); };
    RoomWatch watch{fileSystem, "/recordings", 288000, 0, callback};

    void lookWith(std::uint64_t available, std::uint64_t waiting = 0) {
        fileSystem.setCapacity(available);
        watch.check(elevenSeconds, waiting);
    }
};

TEST_F(RoomWatchTest, reportsNothingWhileThereIsEnough) {
    watch.checkBeforeStart();
    lookWith(100 * million);
    EXPECT_TRUE(reported.empty());
    EXPECT_EQ(log.startingWith("availableSpace").back(), "availableSpace /recordings");
}

TEST_F(RoomWatchTest, reportsShortRoomAndTheEndOnceEach) {
    lookWith(20 * million);
    lookWith(15 * million);
    lookWith(100 * million);
    lookWith(20 * million);
    lookWith(2 * million);
    lookWith(1 * million);
    EXPECT_EQ(reported, (std::vector<DiskRoom>{{tell, 3}, {end, 0}}));
}

TEST_F(RoomWatchTest, stopsCheckingAfterReportingTheEnd) {
    lookWith(2 * million);
    const auto asked = log.calls().size();
    lookWith(2 * million);
    EXPECT_EQ(log.calls().size(), asked);
    EXPECT_EQ(reported, (std::vector<DiskRoom>{{end, 0}}));
}

TEST_F(RoomWatchTest, reportAtTheStartIsNotRepeated) {
    fileSystem.setCapacity(20 * million);
    watch.checkBeforeStart();
    EXPECT_EQ(reported, (std::vector<DiskRoom>{{tell, 3}}));
    lookWith(15 * million);
    EXPECT_EQ(reported.size(), 1U);
}

TEST_F(RoomWatchTest, bytesWaitingForTheDiskAreNotAvailable) {
    lookWith(100 * million, 98 * million);
    EXPECT_EQ(reported, (std::vector<DiskRoom>{{end, 0}}));
}

TEST_F(RoomWatchTest, moreBytesWaitingThanAvailableIsTheEnd) {
    lookWith(3 * million, 5 * million);
    EXPECT_EQ(reported, (std::vector<DiskRoom>{{end, 0}}));
}

TEST_F(RoomWatchTest, refusesToStartWithTooLittleRoom) {
    fileSystem.setCapacity(5 * million);
    try {
        watch.checkBeforeStart();
        FAIL() << "the start was allowed";
    } catch (const RecordingError& error) {
        EXPECT_EQ(error.which(), RecordingError::Case::diskTooFull);
    }
    EXPECT_TRUE(reported.empty());
}

TEST_F(RoomWatchTest, unknownRoomIsNoReasonToEnd) {
    fileSystem.availableSpaceError = std::make_exception_ptr(std::runtime_error("not counted"));
    EXPECT_NO_THROW(watch.checkBeforeStart());
    lookWith(0);
    EXPECT_TRUE(reported.empty());
}

TEST_F(RoomWatchTest, nobodyNeedsToListen) {
    callback = nullptr;
    EXPECT_NO_THROW(lookWith(0));
}

} // namespace
} // namespace vantoro::testing

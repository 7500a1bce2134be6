// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/crash/support/journaling_disk.h"

#include <set>

#include <gtest/gtest.h>

namespace vantoro::testing {

namespace {

std::vector<std::byte> bytes(std::size_t count, int value) {
    return std::vector(count, std::byte(value));
}

class JournalingDiskTest : public ::testing::Test {
protected:
    JournalingDisk disk;
    std::mt19937 random{1};

    std::set<DiskContent> possible(UnsyncedContent unsynced) {
        const auto journal = disk.journal();
        const auto all = possibleContents({}, journal, journal.size(), unsynced, random);
        return {all.begin(), all.end()};
    }

    DiskContent certain() {
        const auto journal = disk.journal();
        return certainContent({}, journal, journal.size());
    }
};

TEST_F(JournalingDiskTest, nothingIsSafeBeforeASync) {
    const auto file = disk.create("/a", FileAudience::userOnly);
    file->writeAt(0, bytes(1024, 1));
    EXPECT_EQ(certain(), DiskContent());
    EXPECT_EQ(possible(UnsyncedContent::lost), (std::set<DiskContent>{{}, {{"/a", {}}}}));
    EXPECT_EQ(possible(UnsyncedContent::kept),
              (std::set<DiskContent>{{}, {{"/a", bytes(1024, 1)}}}));
}

TEST_F(JournalingDiskTest, firstSyncMakesContentAndNameSafe) {
    const auto file = disk.create("/a", FileAudience::userOnly);
    file->writeAt(0, bytes(1024, 1));
    file->sync();
    file->writeAt(0, bytes(512, 2));
    EXPECT_EQ(certain(), (DiskContent{{"/a", bytes(1024, 1)}}));
    EXPECT_EQ(possible(UnsyncedContent::lost), (std::set<DiskContent>{certain()}));
}

TEST_F(JournalingDiskTest, moveAndRemovalMayHaveHappenedOrNotUntilTheFolderIsSynced) {
    const auto file = disk.create("/a", FileAudience::userOnly);
    file->sync();
    disk.move("/a", "/b");
    EXPECT_EQ(possible(UnsyncedContent::lost), (std::set<DiskContent>{{{"/a", {}}}, {{"/b", {}}}}));
    disk.syncFolder("/");
    EXPECT_EQ(certain(), (DiskContent{{"/b", {}}}));
    disk.remove("/b");
    EXPECT_EQ(possible(UnsyncedContent::lost), (std::set<DiskContent>{{}, {{"/b", {}}}}));
}

} // namespace

} // namespace vantoro::testing

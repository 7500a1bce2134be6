// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/commands/folder_check.h"

#include <fstream>
#include <system_error>

#include <gtest/gtest.h>

#include "platform/posix/posix_file_system.h"
#include "tests/support/memory_file_system.h"
#include "tests/support/temporary_folder.h"

namespace vantoro::testing {
namespace {

/// In a folder on the real disk, and in one in memory.
class FolderCheckTest : public ::testing::Test {
protected:
    const TemporaryFolder temporary;
    const std::filesystem::path folder = temporary.path();
    posix::PosixFileSystem disk;
    CallLog log;
    MemoryFileSystem memory{log};

    FolderCheckTest() { memory.put("/r"); }

    /// Checks that the call leaves the folder unchanged.
    FolderCheck check(const std::filesystem::path& checked) {
        const auto before = disk.list(folder).size();
        auto result = checkFolder(disk, checked);
        EXPECT_EQ(disk.list(folder).size(), before);
        return result;
    }

    FolderCheck checkInMemory(const std::filesystem::path& checked) {
        const auto before = memory.paths();
        auto result = checkFolder(memory, checked);
        EXPECT_EQ(memory.paths(), before);
        return result;
    }
};

TEST_F(FolderCheckTest, folderThatIsThereTakesFiles) {
    const auto found = check(folder);
    EXPECT_TRUE(found.exists);
    EXPECT_FALSE(found.refusal);
    EXPECT_GT(found.availableBytes.value_or(0), 0U);
}

TEST_F(FolderCheckTest, folderThatCanBeCreatedIsNotCreated) {
    const auto found = check(folder / "a/b");
    EXPECT_FALSE(found.exists);
    EXPECT_FALSE(found.refusal);
    EXPECT_GT(found.availableBytes.value_or(0), 0U);
}

TEST_F(FolderCheckTest, unnamedFileIsEnough) {
    EXPECT_FALSE(checkInMemory("/r").refusal);
    EXPECT_TRUE(log.startingWith("create ").empty());
}

TEST_F(FolderCheckTest, withoutUnnamedFilesANamedOneIsCreatedAndRemoved) {
    memory.hasUnnamedFiles = false;
    EXPECT_FALSE(checkInMemory("/r").refusal);
    const auto created = log.startingWith("create ");
    ASSERT_EQ(created.size(), 1U);
    EXPECT_TRUE(created[0].starts_with("create .Vantoro-")) << created[0];
    EXPECT_FALSE(created[0].ends_with(".partial.mov")) << created[0];
}

TEST_F(FolderCheckTest, refusalHasTheSystemsReason) {
    memory.createUnnamedError = std::make_exception_ptr(
        std::system_error(std::make_error_code(std::errc::permission_denied)));
    EXPECT_EQ(checkInMemory("/r").refusal, std::errc::permission_denied);
    EXPECT_EQ(checkInMemory("/r/a").refusal, std::errc::permission_denied);
}

TEST_F(FolderCheckTest, refusalOfANamedFileHasTheSystemsReasonToo) {
    memory.hasUnnamedFiles = false;
    memory.createError = std::make_exception_ptr(
        std::system_error(std::make_error_code(std::errc::not_a_directory)));
    EXPECT_EQ(checkInMemory("/r").refusal, std::errc::not_a_directory);
}

TEST_F(FolderCheckTest, fileInPlaceOfAFolderIsRefused) {
    std::ofstream(folder / "file") << "a file";
    EXPECT_EQ(check(folder / "file").refusal, std::errc::not_a_directory);
    EXPECT_EQ(check(folder / "file/below").refusal, std::errc::not_a_directory);
}

} // namespace
} // namespace vantoro::testing

// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/posix/posix_file_system.h"

#include <cerrno>
#include <string>
#include <system_error>

#include <gtest/gtest.h>

#include "tests/platform/posix/disk.h"
#include "tests/support/temporary_folder.h"

namespace vantoro::testing {
namespace {

const std::string fileName = "Vantoro-2025-03-01-093015.m4a";

class FullDiskTest : public ::testing::Test {
protected:
    static constexpr std::size_t capacity = 131072;
    SmallDisk disk{capacity};
    posix::PosixFileSystem fileSystem;

    std::string refusal() const {
        return "Cannot write " + fileName + ": " + reason(disk.errorWhenFull());
    }
};

TEST_F(FullDiskTest, writingSaysWhichFileAndWhyAndKeepsWhatFitted) {
    const auto path = disk.path() / fileName;
    const auto file = fileSystem.create(path, FileAudience::asUserPrefers);
    file->writeAt(0, bytesOf(std::string(1000, 'a')));
    expectFailure([&] { file->writeAt(1000, bytesOf(std::string(2 * capacity, 'b'))); }, refusal());
    EXPECT_EQ(std::filesystem::file_size(path), capacity);
    file->truncate(1000);
    file->sync();
    file->close();
    EXPECT_EQ(contentOf(path), std::string(1000, 'a'));
}

TEST_F(FullDiskTest, halfACopyIsRemovedAndTheNextAttemptSucceeds) {
    const auto path = disk.path() / "takes" / fileName;
    fileSystem.createFolders(path.parent_path());
    const auto file = fileSystem.create(path, FileAudience::userOnly);
    const std::string content(40000, 'a');
    file->writeAt(0, bytesOf(content));
    std::filesystem::rename(disk.path() / "takes", disk.path() / "trash");
    fileSystem.createFolders(disk.path() / "takes");

    disk.fill();
    expectFailure([&] { file->ensureReachable(); }, refusal());
    EXPECT_FALSE(fileSystem.exists(path));
    EXPECT_EQ(contentOf(disk.path() / "trash" / fileName), content);

    disk.empty();
    file->ensureReachable();
    file->writeAt(content.size(), bytesOf("end"));
    EXPECT_EQ(contentOf(path), content + "end");
}

TEST(ReadOnlyFolderTest, nothingCanBeCreatedThere) {
    const ReadOnlyFolder readOnly;
    posix::PosixFileSystem fileSystem;
    EXPECT_THROW(fileSystem.createFolders(readOnly.path() / "inner"), std::system_error);
    EXPECT_THROW(fileSystem.create(readOnly.path() / fileName, FileAudience::userOnly),
                 std::system_error);
    EXPECT_FALSE(fileSystem.exists(readOnly.path() / fileName));
}

TEST(FileInTheWayTest, nothingIsCreatedBelowAFile) {
    const TemporaryFolder folder;
    posix::PosixFileSystem fileSystem;
    writeFile(folder.path() / "file", "x");
    expectFailure([&] { fileSystem.createFolders(folder.path() / "file" / "takes"); },
                  "Cannot create the folder takes: " + reason(ENOTDIR));
    expectFailure([&] { fileSystem.createFolders(folder.path() / "file"); },
                  "Cannot create the folder file: " + reason(ENOTDIR));
    expectFailure(
        [&] { fileSystem.create(folder.path() / "file" / "takes", FileAudience::userOnly); },
        "Cannot open file: " + reason(ENOTDIR));
    EXPECT_EQ(contentOf(folder.path() / "file"), "x");
}

TEST(EndlessPathTest, examiningItFailsInsteadOfGuessing) {
    const TemporaryFolder folder;
    const posix::PosixFileSystem fileSystem;
    const std::string name(300, 'n'); // longer than any file system allows
    expectFailure([&] { static_cast<void>(fileSystem.exists(folder.path() / name)); },
                  "Cannot find " + name + ": " + reason(ENAMETOOLONG));
}

} // namespace
} // namespace vantoro::testing

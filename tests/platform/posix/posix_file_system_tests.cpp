// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/posix/posix_file_system.h"

#include <cerrno>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/posix/disk.h"
#include "tests/support/temporary_folder.h"

namespace vantoro::testing {
namespace {

class PosixFileSystemTest : public ::testing::Test {
protected:
    TemporaryFolder folder;
    posix::PosixFileSystem fileSystem;

    std::filesystem::path in(const std::string& name) const { return folder.path() / name; }
};

TEST_F(PosixFileSystemTest, foldersAreCreatedWithTheirParentsAndMayExist) {
    fileSystem.createFolders(in("a/b/c"));
    EXPECT_TRUE(std::filesystem::is_directory(in("a/b/c")));
    fileSystem.createFolders(in("a/b/c"));
    fileSystem.createFolders(in("a/d/")); // a typed path may end so
    EXPECT_TRUE(std::filesystem::is_directory(in("a/d")));
}

TEST_F(PosixFileSystemTest, linkToAFolderCountsAsTheFolder) {
    std::filesystem::create_directory(in("real"));
    std::filesystem::create_symlink("real", in("link"));
    fileSystem.createFolders(in("link"));
    fileSystem.createFolders(in("link/inner"));
    EXPECT_TRUE(std::filesystem::is_directory(in("real/inner")));
}

TEST_F(PosixFileSystemTest, anythingAtAllExists) {
    EXPECT_FALSE(fileSystem.exists(in("nothing")));
    writeFile(in("file"), "x");
    std::filesystem::create_directory(in("folder"));
    std::filesystem::create_symlink("nowhere", in("dangling"));
    EXPECT_TRUE(fileSystem.exists(in("file")));
    EXPECT_TRUE(fileSystem.exists(in("folder")));
    EXPECT_TRUE(fileSystem.exists(in("dangling")));
    EXPECT_FALSE(fileSystem.exists(in("file/below")));
    EXPECT_FALSE(fileSystem.exists(in("no/folder")));
}

TEST_F(PosixFileSystemTest, removesAFileOrALinkOrAnEmptyFolder) {
    writeFile(in("file"), "x");
    std::filesystem::create_directory(in("folder"));
    std::filesystem::create_symlink("file", in("link"));
    fileSystem.remove(in("link"));
    EXPECT_EQ(contentOf(in("file")), "x"); // its target stays
    fileSystem.remove(in("file"));
    fileSystem.remove(in("folder"));
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST_F(PosixFileSystemTest, neverRemovesAFolderThatHoldsSomething) {
    fileSystem.createFolders(in("folder"));
    writeFile(in("folder/precious"), "x");
    expectFailure([&] { fileSystem.remove(in("folder")); },
                  "Cannot remove folder: " + reason(ENOTEMPTY));
    EXPECT_EQ(contentOf(in("folder/precious")), "x");
}

TEST_F(PosixFileSystemTest, removingNothingFails) {
    expectFailure([&] { fileSystem.remove(in("nothing")); },
                  "Cannot remove nothing: " + reason(ENOENT));
}

TEST_F(PosixFileSystemTest, movingKeepsTheContent) {
    writeFile(in("staging"), "new");
    fileSystem.move(in("staging"), in("final"));
    EXPECT_EQ(contentOf(in("final")), "new");
    EXPECT_FALSE(fileSystem.exists(in("staging")));
}

TEST_F(PosixFileSystemTest, movingOntoAnythingFailsAndKeepsBoth) {
    writeFile(in("staging"), "new");
    writeFile(in("file"), "old");
    fileSystem.createFolders(in("folder"));
    std::filesystem::create_symlink("nowhere", in("link"));
    for (const char* const taken : {"file", "folder", "link"}) {
        expectFailure([&] { fileSystem.move(in("staging"), in(taken)); },
                      std::string("Cannot create ") + taken + ": " + reason(EEXIST));
        EXPECT_EQ(contentOf(in("staging")), "new");
    }
    EXPECT_EQ(contentOf(in("file")), "old");
    EXPECT_TRUE(std::filesystem::is_symlink(in("link")));
}

TEST_F(PosixFileSystemTest, folderIsSyncedWhereItsFileSystemCan) {
    fileSystem.syncFolder(folder.path());
    fileSystem.syncFolder(""); // the folder part of a bare file name
    // This file system refuses to sync folders, which is ignored.
    const int refusing = ::open("/proc/self", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_NE(refusing, -1);
    EXPECT_EQ(::fsync(refusing), -1);
    ::close(refusing);
    fileSystem.syncFolder("/proc/self");
}

TEST_F(PosixFileSystemTest, syncingNoFolderFails) {
    expectFailure([&] { fileSystem.syncFolder(in("nothing")); },
                  "Cannot open nothing: " + reason(ENOENT));
    writeFile(in("file"), "x");
    expectFailure([&] { fileSystem.syncFolder(in("file")); },
                  "Cannot open file: " + reason(ENOTDIR));
}

TEST_F(PosixFileSystemTest, readsAtAnyOffsetAndLessOnlyAtTheEnd) {
    writeFile(in("file"), "0123456789");
    const auto file = fileSystem.open(in("file"));
    EXPECT_EQ(file->size(), 10);
    std::vector<std::byte> bytes(4);
    EXPECT_EQ(file->readAt(3, bytes), 4);
    EXPECT_EQ(bytes, bytesOf("3456"));
    EXPECT_EQ(file->readAt(8, bytes), 2);
    EXPECT_EQ(bytes, bytesOf("8956"));
    EXPECT_EQ(file->readAt(10, bytes), 0);
    EXPECT_EQ(file->readAt(0, {}), 0);
}

TEST_F(PosixFileSystemTest, roomThatIsNotCountedIsNotCalledNone) {
    EXPECT_GT(fileSystem.availableSpace(folder.path()), 0U);
    expectFailure([&] { static_cast<void>(fileSystem.availableSpace("/proc")); },
                  "Cannot count the free space of proc: " + reason(ENOTSUP));
}

TEST_F(PosixFileSystemTest, readerSeesAFileGrow) {
    const auto writer = fileSystem.create(in("file"), FileAudience::userOnly);
    const auto reader = fileSystem.open(in("file"));
    EXPECT_EQ(reader->size(), 0);
    writer->writeAt(0, bytesOf("more"));
    EXPECT_EQ(reader->size(), 4);
    std::vector<std::byte> bytes(4);
    EXPECT_EQ(reader->readAt(0, bytes), 4);
    EXPECT_EQ(bytes, bytesOf("more"));
}

TEST_F(PosixFileSystemTest, threadsReadOneFileSideBySide) {
    std::string content;
    for (char c = 'a'; c <= 'z'; ++c) {
        content.append(4096, c);
    }
    writeFile(in("file"), content);
    const auto file = fileSystem.open(in("file"));
    const auto readAll = [&] {
        for (std::size_t letter = 0; letter < 26; ++letter) {
            std::vector<std::byte> bytes(4096);
            EXPECT_EQ(file->readAt(letter * 4096, bytes), 4096);
            EXPECT_THAT(bytes, ::testing::Each(static_cast<std::byte>('a' + letter)));
        }
    };
    const std::jthread other(readAll);
    readAll();
}

TEST_F(PosixFileSystemTest, opensOnlyRegularFilesAndNeverWaitsForAPipe) {
    expectFailure([&] { fileSystem.open(in("nothing")); },
                  "Cannot open nothing: " + reason(ENOENT));
    expectFailure([&] { fileSystem.open(folder.path()); },
                  "Cannot open " + folder.path().filename().string() + ": " + reason(EISDIR));
    ASSERT_EQ(::mkfifo(in("pipe").c_str(), 0600), 0);
    expectFailure([&] { fileSystem.open(in("pipe")); }, "Cannot open pipe: " + reason(EINVAL));
}

} // namespace
} // namespace vantoro::testing

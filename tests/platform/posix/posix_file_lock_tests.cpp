// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <system_error>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/posix/posix_file_system.h"
#include "tests/platform/posix/disk.h"
#include "tests/support/temporary_folder.h"

namespace vantoro::testing {

namespace {

class PosixFileLockTest : public ::testing::Test {
protected:
    TemporaryFolder folder;
    posix::PosixFileSystem fileSystem;
    const std::filesystem::path file = folder.path() / "file";

    std::unique_ptr<OutputFile> create() { return fileSystem.create(file, FileAudience::userOnly); }

    bool isLocked() { return fileSystem.lock(file) == nullptr; }

    /// The same from another process.
    bool isLockedForOthers() {
        const pid_t child = fork();
        if (child == 0) {
            _exit(fileSystem.lock(file) == nullptr ? 1 : 0);
        }
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status));
        return WEXITSTATUS(status) == 1;
    }
};

TEST_F(PosixFileLockTest, fileBeingWrittenIsLockedUntilItsWriterIsGone) {
    auto output = create();
    EXPECT_TRUE(isLocked());
    EXPECT_TRUE(isLockedForOthers());
    output->sync();
    output->close();
    EXPECT_TRUE(isLocked());
    EXPECT_TRUE(isLockedForOthers());
    output.reset();
    EXPECT_FALSE(isLocked());
    EXPECT_FALSE(isLockedForOthers());
}

TEST_F(PosixFileLockTest, lockShutsOutAllOthersUntilItEnds) {
    create();
    auto lock = fileSystem.lock(file);
    ASSERT_NE(lock, nullptr);
    EXPECT_TRUE(isLocked());
    EXPECT_TRUE(isLockedForOthers());
    lock.reset();
    EXPECT_FALSE(isLocked());
}

TEST_F(PosixFileLockTest, lockEndsWithItsProcess) {
    create();
    std::array<int, 2> held{};
    ASSERT_EQ(pipe(held.data()), 0);
    const pid_t child = fork();
    if (child == 0) {
        const auto lock = fileSystem.lock(file);
        const char sign = lock ? 'y' : 'n';
        _exit(write(held[1], &sign, 1) == 1 && pause() == 0 ? 0 : 1);
    }
    char sign = 0;
    ASSERT_EQ(read(held[0], &sign, 1), 1);
    EXPECT_EQ(sign, 'y');
    EXPECT_TRUE(isLocked());
    kill(child, SIGKILL);
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    EXPECT_FALSE(isLocked());
    ::close(held[0]);
    ::close(held[1]);
}

TEST_F(PosixFileLockTest, fileThatWasPutBackIsLockedToo) {
    const auto output = create();
    std::filesystem::remove(file);
    output->ensureReachable();
    EXPECT_TRUE(isLocked());
    output->close();
    EXPECT_TRUE(isLocked());
}

TEST_F(PosixFileLockTest, fileThatMayOnlyBeReadIsLockedAllTheSameWhileItIsWritten) {
    const auto output = create();
    ASSERT_EQ(chmod(file.c_str(), 0400), 0);
    EXPECT_TRUE(isLocked());
}

TEST_F(PosixFileLockTest, whatIsNotThereCannotBeLocked) {
    EXPECT_THROW(fileSystem.lock(file), std::system_error);
    EXPECT_THROW(fileSystem.lock(folder.path()), std::system_error);
}

TEST_F(PosixFileLockTest, listingNamesEverythingWithItsDate) {
    create();
    fileSystem.create(folder.path() / ".hidden", FileAudience::userOnly);
    fileSystem.createFolders(folder.path() / "inner" / "most");
    const auto then = std::filesystem::file_time_type::clock::now() - std::chrono::days(3);
    std::filesystem::last_write_time(file, then);
    auto entries = fileSystem.list(folder.path());
    std::ranges::sort(entries, std::less<>(), &FolderEntry::path);
    ASSERT_EQ(entries.size(), 3U);
    EXPECT_EQ(entries[0].path, folder.path() / ".hidden");
    EXPECT_EQ(entries[1].path, file);
    EXPECT_EQ(entries[1].modified, then);
    EXPECT_EQ(entries[2].path, folder.path() / "inner");
}

TEST_F(PosixFileLockTest, dateOfALinkThatLeadsNowhereIsNotKnown) {
    std::filesystem::create_symlink("nowhere", folder.path() / "link");
    const auto entries = fileSystem.list(folder.path());
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].modified, std::nullopt);
}

TEST_F(PosixFileLockTest, folderThatIsNotThereCannotBeListed) {
    EXPECT_THROW(fileSystem.list(folder.path() / "none"), std::system_error);
    create();
    EXPECT_THROW(fileSystem.list(file), std::system_error);
}

} // namespace

} // namespace vantoro::testing

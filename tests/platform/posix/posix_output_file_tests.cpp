// SPDX-License-Identifier: GPL-3.0-or-later

#include <cerrno>
#include <memory>
#include <string>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/posix/posix_file_system.h"
#include "tests/platform/posix/disk.h"
#include "tests/support/temporary_folder.h"

namespace vantoro::testing {
namespace {

class PosixOutputFileTest : public ::testing::Test {
protected:
    TemporaryFolder folder;
    posix::PosixFileSystem fileSystem;
    std::filesystem::path takes = folder.path() / "Movies" / "Vantoro";
    std::filesystem::path path = takes / ".Vantoro-1.partial.mov";

    void SetUp() override { std::filesystem::create_directories(takes); }

    std::unique_ptr<OutputFile> fileHolding(const std::string& content) {
        auto file = fileSystem.create(path, FileAudience::userOnly);
        file->writeAt(0, bytesOf(content));
        return file;
    }
};

TEST_F(PosixOutputFileTest, writesAtAnyOffsetTruncatesAndSyncs) {
    const auto file = fileHolding("0123456789");
    file->writeAt(2, bytesOf("ab"));
    file->writeAt(12, bytesOf("cd"));
    file->writeAt(5, {});
    file->sync();
    EXPECT_EQ(contentOf(path), std::string("01ab456789\0\0cd", 14));
    file->truncate(4);
    file->sync();
    file->close();
    EXPECT_EQ(contentOf(path), "01ab");
}

TEST_F(PosixOutputFileTest, neverOverwritesWhatExists) {
    writeFile(path, "precious");
    const auto expected = "Cannot create .Vantoro-1.partial.mov: " + reason(EEXIST);
    expectFailure([&] { fileSystem.create(path, FileAudience::userOnly); }, expected);
    EXPECT_EQ(contentOf(path), "precious");
    std::filesystem::remove(path);
    std::filesystem::create_symlink("elsewhere", path);
    expectFailure([&] { fileSystem.create(path, FileAudience::userOnly); }, expected);
    EXPECT_FALSE(std::filesystem::exists(takes / "elsewhere"));
}

TEST_F(PosixOutputFileTest, onlyTheUserMayReadATemporaryFileWhateverTheMask) {
    for (const mode_t mask : {0U, 022U, 077U}) {
        const Mask current(mask);
        fileSystem.create(path, FileAudience::userOnly)->close();
        EXPECT_EQ(permissionsOf(path), 0600U) << mask;
        std::filesystem::remove(path);
    }
}

TEST_F(PosixOutputFileTest, theUsersMaskDecidesWhoReadsTheRest) {
    for (const mode_t mask : {0U, 022U, 027U, 077U}) {
        const Mask current(mask);
        fileSystem.create(path, FileAudience::asUserPrefers)->close();
        EXPECT_EQ(permissionsOf(path), 0666U & ~mask) << mask;
        std::filesystem::remove(path);
    }
}

TEST_F(PosixOutputFileTest, unnamedFileIsFoundByNobodyBeforeItTakesItsName) {
    const auto file = fileSystem.createUnnamed(takes, FileAudience::asUserPrefers);
    ASSERT_NE(file, nullptr) << "the test's folder is on a disk without such files";
    file->writeAt(0, bytesOf("music"));
    file->sync();
    EXPECT_TRUE(std::filesystem::is_empty(takes));
    file->takeName(path);
    EXPECT_EQ(contentOf(path), "music");
    EXPECT_EQ(fileSystem.lock(path), nullptr);
    file->sync();
    file->ensureReachable();
    file->close();
}

TEST_F(PosixOutputFileTest, unnamedFileTakesNoNameThatIsTaken) {
    const auto file = fileSystem.createUnnamed(takes, FileAudience::asUserPrefers);
    ASSERT_NE(file, nullptr);
    writeFile(path, "precious");
    expectFailure([&] { file->takeName(path); },
                  "Cannot create .Vantoro-1.partial.mov: " + reason(EEXIST));
    EXPECT_EQ(contentOf(path), "precious");
}

TEST_F(PosixOutputFileTest, unnamedFileIsGoneWhenItTookNoName) {
    fileSystem.createUnnamed(takes, FileAudience::userOnly)->writeAt(0, bytesOf("music"));
    EXPECT_TRUE(std::filesystem::is_empty(takes));
}

TEST_F(PosixOutputFileTest, keepsItsLockUnderANewName) {
    const auto file = fileHolding("music");
    file->sync();
    file->close();
    file->takeName(takes / "final");
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(contentOf(takes / "final"), "music");
    EXPECT_EQ(fileSystem.lock(takes / "final"), nullptr);
    writeFile(takes / "other", "precious");
    expectFailure([&] { file->takeName(takes / "other"); },
                  "Cannot create other: " + reason(EEXIST));
    EXPECT_EQ(contentOf(takes / "other"), "precious");
}

TEST_F(PosixOutputFileTest, takesNoNameFromAnotherFileInItsPlace) {
    const auto file = fileHolding("music");
    std::filesystem::remove(path);
    writeFile(path, "precious");
    EXPECT_THROW(file->takeName(takes / "final"), std::system_error);
    file->discard();
    EXPECT_EQ(contentOf(path), "precious");
}

TEST_F(PosixOutputFileTest, discardedFileIsGoneUnderWhateverName) {
    const auto file = fileHolding("music");
    file->close();
    file->takeName(takes / "final");
    file->discard();
    EXPECT_TRUE(std::filesystem::is_empty(takes));
}

TEST_F(PosixOutputFileTest, claimTakesOverWhatTheDeadLeftAndEmptiesIt) {
    writeFile(path, "half a file");
    const auto file = fileSystem.claim(path, FileAudience::asUserPrefers);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(contentOf(path), "");
    EXPECT_EQ(fileSystem.lock(path), nullptr);
    file->writeAt(0, bytesOf("music"));
    file->sync();
    EXPECT_EQ(contentOf(path), "music");
}

TEST_F(PosixOutputFileTest, claimLeavesWhatIsInUseOrNoFileOfOurs) {
    const auto living = fileHolding("music");
    EXPECT_EQ(fileSystem.claim(path, FileAudience::asUserPrefers), nullptr);
    EXPECT_EQ(contentOf(path), "music");

    std::filesystem::create_directory(takes / "folder");
    std::filesystem::create_symlink("nowhere", takes / "dangling");
    writeFile(takes / "precious", "precious");
    std::filesystem::create_symlink("precious", takes / "link");
    std::filesystem::create_hard_link(takes / "precious", takes / "second name");
    ASSERT_EQ(::mkfifo((takes / "pipe").c_str(), 0600), 0);
    for (const char* const odd : {"folder", "dangling", "link", "second name", "pipe"}) {
        EXPECT_EQ(fileSystem.claim(takes / odd, FileAudience::asUserPrefers), nullptr) << odd;
    }
    EXPECT_EQ(contentOf(takes / "precious"), "precious");
    EXPECT_FALSE(std::filesystem::exists(takes / "nowhere"));
}

TEST_F(PosixOutputFileTest, thereAreNoUnnamedFilesWhereTheSystemHasNone) {
    EXPECT_EQ(fileSystem.createUnnamed("/proc", FileAudience::userOnly), nullptr);
}

TEST_F(PosixOutputFileTest, isNotInheritedByProgramsThatAreStarted) {
    const auto output = fileHolding("x");
    const auto input = fileSystem.open(path);
    int ours = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone; // the listing's own descriptor
        const auto target = std::filesystem::read_symlink(entry.path(), gone);
        if (target.string().starts_with(takes.string())) {
            const int flags = ::fcntl(std::stoi(entry.path().filename()), F_GETFD);
            EXPECT_NE(flags & FD_CLOEXEC, 0) << target;
            ++ours;
        }
    }
    EXPECT_GE(ours, 2);
}

TEST_F(PosixOutputFileTest, failedCreationLeavesNothingBehind) {
    std::filesystem::remove(takes);
    expectFailure([&] { fileSystem.create(path, FileAudience::userOnly); },
                  "Cannot open Vantoro: " + reason(ENOENT));
    EXPECT_FALSE(std::filesystem::exists(takes));
}

TEST_F(PosixOutputFileTest, closingReportsAFileThatIsNotOpen) {
    const auto file = fileHolding("x");
    file->close();
    expectFailure([&] { file->close(); }, "Cannot write .Vantoro-1.partial.mov: " + reason(EBADF));
}

TEST_F(PosixOutputFileTest, reachableFileIsLeftAsItIs) {
    const auto file = fileHolding("content");
    std::filesystem::create_hard_link(path, takes / "same");
    file->ensureReachable();
    EXPECT_TRUE(std::filesystem::equivalent(path, takes / "same"));
    EXPECT_EQ(contentOf(path), "content");
}

TEST_F(PosixOutputFileTest, removedFolderIsMadeAgainWithAllThatWasWritten) {
    const std::string content(3'000'001, 'a'); // several copied blocks, the last one short
    const auto file = fileHolding(content);
    std::filesystem::remove_all(folder.path() / "Movies");
    file->ensureReachable();
    EXPECT_EQ(contentOf(path), content);
    EXPECT_EQ(permissionsOf(path), 0600U);
    file->writeAt(content.size(), bytesOf("more"));
    file->sync();
    file->ensureReachable();
    file->close();
    EXPECT_EQ(contentOf(path), content + "more");
}

TEST_F(PosixOutputFileTest, fileInAMovedFolderIsCopiedToWhereItBelongs) {
    const auto file = fileHolding("content");
    std::filesystem::rename(takes, folder.path() / "trash");
    file->writeAt(7, bytesOf(", more"));
    file->sync(); // a folder removed since does not matter
    file->ensureReachable();
    file->writeAt(13, bytesOf(", end"));
    EXPECT_EQ(contentOf(path), "content, more, end");
    EXPECT_EQ(contentOf(folder.path() / "trash" / path.filename()), "content, more");
}

TEST_F(PosixOutputFileTest, removedFileIsMadeAgain) {
    const Mask mask(027);
    const auto file = fileSystem.create(path, FileAudience::asUserPrefers);
    std::filesystem::remove(path);
    file->ensureReachable();
    EXPECT_EQ(contentOf(path), "");
    EXPECT_EQ(permissionsOf(path), 0640U);
}

TEST_F(PosixOutputFileTest, somebodyElsesFileAtThePathIsNeverTouched) {
    const auto file = fileHolding("ours");
    std::filesystem::remove(path);
    writeFile(path, "theirs");
    expectFailure([&] { file->ensureReachable(); },
                  "Cannot create .Vantoro-1.partial.mov: " + reason(EEXIST));
    EXPECT_EQ(contentOf(path), "theirs");
}

TEST_F(PosixOutputFileTest, fileInPlaceOfTheFolderIsReported) {
    const auto file = fileHolding("ours");
    std::filesystem::remove_all(takes);
    writeFile(takes, "theirs");
    expectFailure([&] { file->ensureReachable(); },
                  "Cannot create the folder Vantoro: " + reason(ENOTDIR));
    EXPECT_EQ(contentOf(takes), "theirs");
}

TEST_F(PosixOutputFileTest, relativePathKeepsItsMeaningWhenTheProgramsFolderChanges) {
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(takes);
    const auto file = fileSystem.create("take.mov", FileAudience::userOnly);
    std::filesystem::current_path(before);
    std::filesystem::remove(takes / "take.mov");
    file->writeAt(0, bytesOf("content"));
    file->ensureReachable();
    EXPECT_EQ(contentOf(takes / "take.mov"), "content");
}

} // namespace
} // namespace vantoro::testing

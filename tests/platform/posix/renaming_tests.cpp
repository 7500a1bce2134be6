// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/posix/renaming.h"

#include <cerrno>

#include <gtest/gtest.h>

#include "tests/platform/posix/disk.h"
#include "tests/support/temporary_folder.h"

namespace vantoro::testing {

namespace {

using Way = bool (*)(const std::filesystem::path&, const std::filesystem::path&);

/// Each method, on a file system that supports all of them.
class RenamingTest : public ::testing::TestWithParam<Way> {
protected:
    TemporaryFolder folder;

    std::filesystem::path in(const char* name) const { return folder.path() / name; }
};

TEST_P(RenamingTest, givesTheFileItsNewNameAlone) {
    writeFile(in("a"), "sound");
    EXPECT_TRUE(GetParam()(in("a"), in("b")));
    EXPECT_EQ(contentOf(in("b")), "sound");
    EXPECT_FALSE(std::filesystem::exists(in("a")));
    EXPECT_EQ(std::filesystem::hard_link_count(in("b")), 1U);
}

TEST_P(RenamingTest, neverReplacesAnything) {
    writeFile(in("a"), "sound");
    writeFile(in("file"), "precious");
    std::filesystem::create_directory(in("folder"));
    std::filesystem::create_symlink("nowhere", in("link"));
    for (const char* const taken : {"file", "folder", "link"}) {
        expectFailure([&] { GetParam()(in("a"), in(taken)); },
                      std::string("Cannot create ") + taken + ": " + reason(EEXIST));
    }
    EXPECT_EQ(contentOf(in("a")), "sound");
    EXPECT_EQ(contentOf(in("file")), "precious");
}

TEST_P(RenamingTest, leavesNothingWhereThereIsNothingToRename) {
    EXPECT_THROW(GetParam()(in("a"), in("b")), std::system_error);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

INSTANTIATE_TEST_SUITE_P(Ways, RenamingTest,
                         ::testing::Values(posix::renameInOneStep, posix::renameByLink,
                                           posix::renameOverOwnFile));

} // namespace

} // namespace vantoro::testing

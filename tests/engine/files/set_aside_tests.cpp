// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/files/output_place.h"

#include <stdexcept>

#include <gtest/gtest.h>

#include "engine/recorder/salvage.h"
#include "tests/engine/recorder/recorder_fixture.h"

namespace vantoro::testing {
namespace {

class SetAsideTest : public ::testing::Test {
protected:
    CallLog log;
    MemoryFileSystem fileSystem{log};
    const std::filesystem::path temporary = "/r/.Vantoro-1.partial.mov";

    SetAsideTest() { fileSystem.put(temporary); }

    std::filesystem::path setAsideFor(const std::filesystem::path& finalFile) {
        return setAside(fileSystem, temporary, finalFile);
    }
};

TEST_F(SetAsideTest, originalLiesBesideItsFinalFileAndSalvageSkipsIt) {
    const auto place = setAsideFor("/r/Vantoro-2026-11-22-193015.m4a");
    EXPECT_EQ(place, "/r/Vantoro-2026-11-22-193015.incomplete.mov");
    EXPECT_EQ(fileSystem.paths(), std::set{place});
    EXPECT_FALSE(isIncompleteRecording(place));
}

TEST_F(SetAsideTest, whatExistsIsNeverReplaced) {
    const std::set<std::filesystem::path> taken{"/r/a-2.incomplete.mov", "/r/a.incomplete.mov"};
    for (const auto& path : taken) {
        fileSystem.put(path);
    }
    EXPECT_EQ(setAsideFor("/r/a.m4a"), "/r/a-3.incomplete.mov");
    EXPECT_EQ(fileSystem.paths().size(), 3U);
    fileSystem.put(temporary);
    EXPECT_EQ(setAsideFor("/r/a-2.m4a"), "/r/a-2-2.incomplete.mov");
}

TEST_F(SetAsideTest, newNameIsOnTheDiskWhenItReturns) {
    setAsideFor("/r/a.m4a");
    EXPECT_EQ(log.calls(), (std::vector<std::string>{"move .Vantoro-1.partial.mov a.incomplete.mov",
                                                     "syncFolder /r"}));
}

TEST_F(SetAsideTest, originalThatCannotBeMovedStays) {
    fileSystem.moveError = std::make_exception_ptr(
        std::system_error(std::make_error_code(std::errc::read_only_file_system)));
    EXPECT_THROW(setAsideFor("/r/a.m4a"), std::system_error);
    EXPECT_EQ(fileSystem.paths(), std::set{temporary});
}

TEST_F(SetAsideTest, movedOriginalIsSetAsideEvenIfTheFolderCannotBeSynced) {
    fileSystem.syncFolderError = std::make_exception_ptr(std::runtime_error("no"));
    EXPECT_EQ(setAsideFor("/r/a.m4a"), "/r/a.incomplete.mov");
}

} // namespace
} // namespace vantoro::testing

// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/files/output_place.h"

#include <optional>
#include <set>
#include <system_error>

#include <gtest/gtest.h>

#include "tests/support/call_log.h"
#include "tests/support/memory_file_system.h"

namespace vantoro::testing {
namespace {

using Paths = std::set<std::filesystem::path>;

class OutputPlaceTest : public ::testing::Test {
protected:
    CallLog log;
    MemoryFileSystem fileSystem{log};

    OutputPlace place() { return {fileSystem, "/r", "a"}; }
};

TEST_F(OutputPlaceTest, isKeptByAStagingFileUntilItIsGivenUp) {
    {
        const auto kept = place();
        EXPECT_EQ(kept.location(), "/r/a.m4a");
        EXPECT_EQ(fileSystem.paths(), Paths{"/r/a.exporting.m4a"});
    }
    EXPECT_TRUE(fileSystem.paths().empty());
}

TEST_F(OutputPlaceTest, isTheNextOneWhereSomebodyExportsOrSomethingOddLies) {
    fileSystem.put("/r/a.exporting.m4a");
    fileSystem.locked = {"/r/a.exporting.m4a"};
    EXPECT_EQ(place().location(), "/r/a-2.m4a");
    EXPECT_TRUE(fileSystem.exists("/r/a.exporting.m4a"));
}

TEST_F(OutputPlaceTest, isFreeWhereAnExportDied) {
    fileSystem.put("/r/a.exporting.m4a");
    EXPECT_EQ(place().location(), "/r/a.m4a");
    EXPECT_TRUE(fileSystem.paths().empty()) << "the abandoned file is gone with the place";
}

TEST_F(OutputPlaceTest, isTheNextOneWhereTheNameWasTakenBeforeTheStagingFileWas) {
    // Another process publishes between the check of the name and the claim.
    fileSystem.afterClaim = [this] {
        fileSystem.put("/r/a.m4a");
        fileSystem.afterClaim = {};
    };
    const auto next = place();
    EXPECT_EQ(next.location(), "/r/a-2.m4a");
    EXPECT_EQ(fileSystem.paths(), (Paths{"/r/a.m4a", "/r/a-2.exporting.m4a"}));
}

TEST_F(OutputPlaceTest, failsWhereNoFileCanBeMade) {
    fileSystem.claimError =
        std::make_exception_ptr(std::system_error(std::make_error_code(std::errc::io_error)));
    EXPECT_THROW(place(), std::system_error);
}

TEST_F(OutputPlaceTest, publishedFileHasTheNameAndCanStillBeDiscarded) {
    const auto final = place().publish(nullptr);
    EXPECT_EQ(final.location, "/r/a.m4a");
    EXPECT_EQ(fileSystem.paths(), Paths{"/r/a.m4a"});
    final.file->discard();
    EXPECT_TRUE(fileSystem.paths().empty());
}

TEST_F(OutputPlaceTest, takesTheNextFreeNameWhereOthersCameBetween) {
    auto reserved = place();
    fileSystem.put("/r/a.m4a");
    fileSystem.put("/r/a-2.m4a");
    EXPECT_EQ(reserved.publish(nullptr).location, "/r/a-3.m4a");
    EXPECT_EQ(fileSystem.paths(), (Paths{"/r/a.m4a", "/r/a-2.m4a", "/r/a-3.m4a"}));
}

TEST(StagingName, replacesTheExtension) {
    EXPECT_EQ(stagingPath("/r/Vantoro-2025-03-01-093015.m4a"),
              "/r/Vantoro-2025-03-01-093015.exporting.m4a");
    EXPECT_EQ(stagingPath("/r/Vantoro-2025-03-01-093015-2.m4a"),
              "/r/Vantoro-2025-03-01-093015-2.exporting.m4a");
}

} // namespace
} // namespace vantoro::testing

// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/file_names.h"

#include <regex>
#include <set>

#include <gtest/gtest.h>

#include "tests/support/recorder_fakes.h"

namespace vantoro::testing {
namespace {

class OutputNameTest : public ::testing::Test {
protected:
    CallLog log;
    FakeFileSystem fileSystem{log};
    FakeClock clock;

    std::string chosen() {
        const auto location = uniqueOutputURL("/recordings", fileSystem, clock).location();
        EXPECT_EQ(location.parent_path(), "/recordings");
        return location.filename();
    }
};

TEST_F(OutputNameTest, isTheLocalTimeOfTheStop) {
    EXPECT_EQ(chosen(), "Vantoro-2025-03-01-093015.m4a");
}

TEST_F(OutputNameTest, takenNamesAreCountedFromTwo) {
    fileSystem.entries = {"/recordings/Vantoro-2025-03-01-093015.m4a"};
    EXPECT_EQ(chosen(), "Vantoro-2025-03-01-093015-2.m4a");
    fileSystem.entries.insert("/recordings/Vantoro-2025-03-01-093015-2.m4a");
    EXPECT_EQ(chosen(), "Vantoro-2025-03-01-093015-3.m4a");
}

TEST_F(OutputNameTest, plainNameIsUsedWhenOnlyTheSecondIsTaken) {
    fileSystem.entries = {"/recordings/Vantoro-2025-03-01-093015-2.m4a"};
    EXPECT_EQ(chosen(), "Vantoro-2025-03-01-093015.m4a");
}

TEST_F(OutputNameTest, hasNoLeadingZerosInALongCount) {
    fileSystem.entries = {"/recordings/Vantoro-2025-03-01-093015.m4a"};
    for (int i = 2; i < 12; ++i) {
        fileSystem.entries.insert("/recordings/Vantoro-2025-03-01-093015-" + std::to_string(i) +
                                  ".m4a");
    }
    EXPECT_EQ(chosen(), "Vantoro-2025-03-01-093015-12.m4a");
}

TEST(TemporaryName, isHiddenAndCarriesARandomUpperCaseUUID) {
    const std::regex shape(R"(\.Vantoro-[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-)"
                           R"([0-9A-F]{12}\.partial\.mov)");
    std::set<std::string> names;
    for (int i = 0; i < 100; ++i) {
        const auto name = temporaryFileName();
        EXPECT_TRUE(std::regex_match(name, shape)) << name;
        names.insert(name);
    }
    EXPECT_EQ(names.size(), 100U);
}

} // namespace
} // namespace vantoro::testing

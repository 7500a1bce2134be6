// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/files/file_names.h"

#include <algorithm>
#include <regex>
#include <set>

#include <gtest/gtest.h>

#include "tests/support/call_log.h"
#include "tests/support/fake_clock.h"
#include "tests/support/memory_file_system.h"

namespace vantoro::testing {
namespace {

class OutputNameTest : public ::testing::Test {
protected:
    CallLog log;
    MemoryFileSystem fileSystem{log};
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

TEST_F(OutputNameTest, hoursCountFromMidnightToMidnight) {
    clock.local.tm_hour = 13;
    EXPECT_EQ(chosen(), "Vantoro-2025-03-01-133015.m4a");
    clock.local.tm_hour = 0;
    EXPECT_EQ(chosen(), "Vantoro-2025-03-01-003015.m4a");
}

/// A clock that advances a minute at each query.
class HurryingClock final : public Clock {
public:
    double systemUptime() const override { return 0; }

    std::tm localTime() const override {
        ++time_.tm_min;
        return time_;
    }

    WallTime wallTime() const override { return {}; }

private:
    mutable std::tm time_ = FakeClock{}.local;
};

TEST_F(OutputNameTest, allNamesThatAreTriedHaveTheSameTime) {
    fileSystem.put("/recordings/Vantoro-2025-03-01-093115.m4a");
    fileSystem.put("/recordings/Vantoro-2025-03-01-093115-2.m4a");
    EXPECT_EQ(uniqueOutputURL("/recordings", fileSystem, HurryingClock{}).location().filename(),
              "Vantoro-2025-03-01-093115-3.m4a");
}

TEST_F(OutputNameTest, takenNamesAreCountedFromTwo) {
    fileSystem.put("/recordings/Vantoro-2025-03-01-093015.m4a");
    EXPECT_EQ(chosen(), "Vantoro-2025-03-01-093015-2.m4a");
    fileSystem.put("/recordings/Vantoro-2025-03-01-093015-2.m4a");
    EXPECT_EQ(chosen(), "Vantoro-2025-03-01-093015-3.m4a");
}

TEST_F(OutputNameTest, plainNameIsUsedWhenOnlyTheSecondIsTaken) {
    fileSystem.put("/recordings/Vantoro-2025-03-01-093015-2.m4a");
    EXPECT_EQ(chosen(), "Vantoro-2025-03-01-093015.m4a");
}

TEST_F(OutputNameTest, hasNoLeadingZerosInALongCount) {
    fileSystem.put("/recordings/Vantoro-2025-03-01-093015.m4a");
    for (int i = 2; i < 12; ++i) {
        fileSystem.put("/recordings/Vantoro-2025-03-01-093015-" + std::to_string(i) + ".m4a");
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

TEST(TemporaryName, hasAnyDigitInEachRandomPlaceAndNoneTwice) {
    std::vector<std::string> digits; // the random digits of each name's UUID
    for (int i = 0; i < 500; ++i) {
        auto uuid = temporaryFileName().substr(std::string(".Vantoro-").size(), 36);
        std::erase(uuid, '-');
        uuid.erase(16, 1); // the variant: only four values
        uuid.erase(12, 1); // the version
        digits.push_back(uuid);
    }
    for (std::size_t place = 0; place < 30; ++place) {
        std::set<char> seen;
        for (const std::string& uuid : digits) {
            seen.insert(uuid.at(place));
        }
        EXPECT_EQ(seen.size(), 16U) << place;
        for (std::size_t other = 0; other < place; ++other) {
            EXPECT_FALSE(std::ranges::all_of(
                digits, [&](const std::string& uuid) { return uuid.at(place) == uuid.at(other); }))
                << place << " repeats " << other;
        }
    }
}

} // namespace
} // namespace vantoro::testing

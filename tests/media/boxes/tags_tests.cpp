// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/boxes/tags.h"

#include <string>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using namespace media;

constexpr WallTime inShanghai{.seconds = 1'740'792'615, .utcOffset = 8 * 3600};

/// The content of a header that holds nothing but tags.
std::vector<std::byte> headerWith(const RecordingTags& tags) {
    BoxWriter out;
    writeTags(out, tags);
    return out.take();
}

TEST(Tags, boxTimesCountFrom1904) {
    EXPECT_EQ(boxTime(WallTime{.seconds = 0, .utcOffset = 3600}), 2'082'844'800U);
    EXPECT_EQ(boxTime(std::nullopt), 0U);
    EXPECT_EQ(boxTime(WallTime{.seconds = -3'000'000'000, .utcOffset = 0}), 0U);
}

TEST(Tags, datesAreLocalTimesWithTheirOffset) {
    EXPECT_EQ(dateText(inShanghai), "2025-03-01T09:30:15+08:00");
    EXPECT_EQ(dateText({.seconds = 1'740'792'615, .utcOffset = -(9 * 3600 + 1800)}),
              "2025-02-28T16:00:15-09:30");
    EXPECT_EQ(dateText({}), "1970-01-01T00:00:00+00:00");
}

TEST(Tags, datesReadBackAsWritten) {
    for (const std::int32_t offset : {0, 8 * 3600, 20'700, -(9 * 3600 + 1800)}) {
        const WallTime time{.seconds = 1'740'792'615, .utcOffset = offset};
        EXPECT_EQ(timeOf(dateText(time)), time);
    }
}

TEST(Tags, otherTextsAreNoDates) {
    for (const char* const text :
         {"", "2025", "2025-03-01T09:30:15Z", "2025-03-01T09:30:15+0800",
          "2025-13-01T09:30:15+08:00", "2025-02-30T09:30:15+08:00", "2025-03-01T09:30:15+08:00 ",
          "2025-03-01 09:30:15+08:00", "2025-03-01T09:30:15+08:0", "2025-03-01T-9:30:15+08:00"}) {
        EXPECT_EQ(timeOf(text), std::nullopt) << text;
    }
}

TEST(Tags, readBackAsWritten) {
    for (const RecordingTags& tags :
         {RecordingTags{.start = inShanghai, .title = "访谈 \"一\""}, RecordingTags{},
          RecordingTags{.start = inShanghai, .title = {}}}) {
        EXPECT_EQ(readTags(headerWith(tags)), tags);
    }
}

TEST(Tags, damagedOnesStayEmptyOrWrongButNeverFail) {
    const auto whole = headerWith({.start = inShanghai, .title = "Interview"});
    for (std::size_t place = 0; place < whole.size(); ++place) {
        auto damaged = whole;
        damaged[place] ^= std::byte{0xFF};
        EXPECT_NO_THROW(readTags(damaged)) << place;
        damaged.resize(place);
        EXPECT_EQ(readTags(damaged), RecordingTags{}) << place;
    }
}

} // namespace
} // namespace vantoro::testing

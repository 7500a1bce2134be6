// SPDX-License-Identifier: GPL-3.0-or-later

#include "update/semantic_version.h"

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using Numbers = std::vector<std::int64_t>;

constexpr auto largest = std::numeric_limits<std::int64_t>::max();
constexpr auto smallest = std::numeric_limits<std::int64_t>::min();

TEST(SemanticVersionTest, consistsOfTheNumbersBetweenDots) {
    struct Case {
        std::string text;
        Numbers numbers;
    };

    for (const auto& [text, numbers] : std::vector<Case>{
             {"1.4.0", {1, 4, 0}},
             {"7", {7}},
             {"1.2.3.4.5.6.7.8.9", {1, 2, 3, 4, 5, 6, 7, 8, 9}},
             {"007.010", {7, 10}},
             {"9223372036854775807.-9223372036854775808", {largest, smallest}},
         }) {
        EXPECT_EQ(SemanticVersion(text).components(), numbers) << text;
    }
}

TEST(SemanticVersionTest, skipsEmptyPieces) {
    for (const auto* text : {"1..2.", ".1.2", "...1...2...", "1.2"}) {
        EXPECT_EQ(SemanticVersion(text).components(), (Numbers{1, 2})) << text;
    }
    for (const auto* text : {"", ".", "...."}) {
        EXPECT_EQ(SemanticVersion(text).components(), Numbers()) << text;
    }
}

TEST(SemanticVersionTest, knowsSigns) {
    EXPECT_EQ(SemanticVersion("+1.-2.+0.-0.+03").components(), (Numbers{1, -2, 0, 0, 3}));
}

TEST(SemanticVersionTest, takesAnythingElseAsZero) {
    for (const std::string piece : {"2-beta",
                                    " 3",
                                    "3 ",
                                    "ver1",
                                    "v1",
                                    "+",
                                    "-",
                                    "+-1",
                                    "-+1",
                                    "++1",
                                    "--1",
                                    "1,5",
                                    "0x10",
                                    "1e3",
                                    "1_000",
                                    "\t1",
                                    "1\n",
                                    "٣",
                                    "１",
                                    "9223372036854775808",
                                    "+9223372036854775808",
                                    "-9223372036854775809",
                                    "99999999999999999999999999999999"}) {
        EXPECT_EQ(SemanticVersion("1." + piece + ".4").components(), (Numbers{1, 0, 4})) << piece;
    }
    EXPECT_EQ(SemanticVersion(std::string_view("1\0.2", 4)).components(), (Numbers{0, 2}));
}

TEST(SemanticVersionTest, isOrderedByTheFirstNumbersThatDiffer) {
    struct Case {
        const char* older;
        const char* newer;
    };

    for (const auto& [older, newer] : {
             Case{"1.9", "1.10"},
             Case{"1.2", "1.2.1"},
             Case{"1.9.9", "2"},
             Case{"0.1.3", "0.1.4"},
             Case{"", "0.0.1"},
             Case{"1.-1", "1"},
             Case{"-1", ""},
             Case{"1.2.0.0.-1", "1.2"},
             Case{"1.2.3-beta", "1.2.3"},
             Case{"v2.0", "1.0"},
             Case{"-9223372036854775808", "9223372036854775807"},
             Case{"99999999999999999999", "1"},
         }) {
        EXPECT_LT(SemanticVersion(older), SemanticVersion(newer)) << older << " " << newer;
        EXPECT_FALSE(SemanticVersion(newer) < SemanticVersion(older)) << older << " " << newer;
        EXPECT_NE(SemanticVersion(newer), SemanticVersion(older)) << older << " " << newer;
    }
}

TEST(SemanticVersionTest, equalsWhatOnlyAddsZeros) {
    struct Case {
        const char* one;
        const char* other;
    };

    for (const auto& [one, other] : {
             Case{"1.2", "1.2.0"},
             Case{"1.2", "1.2.0.0.0"},
             Case{"", "0"},
             Case{"", ""},
             Case{"1.2.0", "1.2.3-beta"},
             Case{"1..2", "1.2"},
             Case{"+1", "01"},
         }) {
        EXPECT_EQ(SemanticVersion(one), SemanticVersion(other)) << one << " " << other;
        EXPECT_FALSE(SemanticVersion(one) < SemanticVersion(other)) << one << " " << other;
        EXPECT_FALSE(SemanticVersion(other) < SemanticVersion(one)) << one << " " << other;
    }
}

} // namespace
} // namespace vantoro::testing

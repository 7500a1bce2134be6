// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/movie/fragment_checksum.h"

#include <span>
#include <string_view>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using namespace media;

std::uint32_t sumOf(std::string_view text) {
    Checksum sum;
    sum.add(std::as_bytes(std::span(text)));
    return sum.value();
}

TEST(FragmentChecksum, isCrc32WithoutItsFinalInversion) {
    EXPECT_EQ(sumOf(""), 0xFFFFFFFFU);
    EXPECT_EQ(~sumOf("123456789"), 0xCBF43926U);
    EXPECT_EQ(~sumOf("The quick brown fox jumps over the lazy dog"), 0x414FA339U);
}

TEST(FragmentChecksum, doesNotDependOnHowTheBytesAreSplit) {
    constexpr std::string_view text = "The quick brown fox jumps over the lazy dog";
    for (std::size_t at = 0; at <= text.size(); ++at) {
        Checksum sum;
        sum.add(std::as_bytes(std::span(text.substr(0, at))));
        sum.add(std::as_bytes(std::span(text.substr(at))));
        EXPECT_EQ(sum.value(), sumOf(text)) << at;
    }
}

} // namespace
} // namespace vantoro::testing

// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/texts/ending_texts.h"

#include <set>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

TEST(EndingTextsTest, eachIsOneLineOfItsOwnThatNamesTheFolder) {
    std::set<std::string> seen;
    for (const auto work : {EndingWork::start, EndingWork::saving, EndingWork::salvage}) {
        for (const auto cause : {EndingCause::standstill, EndingCause::askedAgain}) {
            for (const auto language : allLanguages) {
                const auto text = endingText(work, cause, "/the/folder", language);
                EXPECT_NE(text.find("/the/folder"), std::string::npos) << text;
                EXPECT_EQ(text.find('\n'), std::string::npos) << text;
                EXPECT_TRUE(seen.insert(text).second) << text;
            }
        }
    }
}

} // namespace
} // namespace vantoro::testing

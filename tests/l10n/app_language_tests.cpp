// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/app_language.h"

#include <array>
#include <unordered_set>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using enum AppLanguage;

TEST(AppLanguageTest, chineseIsOfferedBeforeEnglish) {
    EXPECT_EQ(allLanguages, (std::array{chinese, english}));
}

TEST(AppLanguageTest, everyLanguageHasItsRawValueAndItsOwnName) {
    EXPECT_EQ(rawValue(chinese), "zh-Hans");
    EXPECT_EQ(displayName(chinese), "中文");
    EXPECT_EQ(rawValue(english), "en");
    EXPECT_EQ(displayName(english), "English");
}

TEST(AppLanguageTest, rawValueGivesItsLanguage) {
    for (const auto language : allLanguages) {
        EXPECT_EQ(languageOf(rawValue(language)), language);
    }
}

TEST(AppLanguageTest, anyOtherTextGivesNone) {
    for (const auto* text : {"", "EN", "En", "en-US", "en_US", "eng", "e", " en", "en ", "English",
                             "zh", "zh-hans", "zh-Hant", "zh_CN", "ZH-HANS", "中文", "de"}) {
        EXPECT_EQ(languageOf(text), std::nullopt) << text;
    }
}

TEST(AppLanguageTest, canBeKeptInAHashTable) {
    EXPECT_EQ(std::unordered_set(allLanguages.begin(), allLanguages.end()).size(), 2U);
}

} // namespace
} // namespace vantoro::testing

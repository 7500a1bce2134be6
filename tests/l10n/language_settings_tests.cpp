// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/language_settings.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "l10n/l10n.h"
#include "tests/support/memory_preferences.h"

namespace vantoro::testing {
namespace {

using enum AppLanguage;
using Stored = std::vector<std::pair<Preference, std::string>>;

TEST(LanguageSettingsTest, beginWithWhatIsStored) {
    struct Case {
        const char* stored;
        AppLanguage language;
    };

    for (const auto& [stored, language] : {
             Case{"en", english},
             Case{"zh-Hans", chinese},
             Case{"", chinese},
             Case{"EN", chinese},
             Case{"en-US", chinese},
             Case{"fr", chinese},
         }) {
        auto preferences = preferencesIn(stored);
        EXPECT_EQ(LanguageSettings(preferences).language(), language) << stored;
    }
}

TEST(LanguageSettingsTest, beginInChineseWhenNothingIsStored) {
    MemoryPreferences nothing;
    EXPECT_EQ(LanguageSettings(nothing).language(), chinese);
}

TEST(LanguageSettingsTest, beginningReadsOnceAndStoresNothing) {
    for (const auto* stored : {"en", "zh-Hans", "something else"}) {
        auto preferences = preferencesIn(stored);
        const LanguageSettings settings(preferences);
        EXPECT_EQ(preferences.readings, 1);
        EXPECT_EQ(preferences.stored, Stored{}) << stored;
    }
}

TEST(LanguageSettingsTest, keepTheirLanguageWhenThePreferenceIsWrittenByAnother) {
    MemoryPreferences preferences;
    const LanguageSettings settings(preferences);
    preferences.values[Preference::appLanguage] = "en";
    EXPECT_EQ(settings.language(), chinese);
    EXPECT_EQ(L10n(preferences).language(), english);
}

class LanguageChangeTest : public ::testing::Test {
protected:
    MemoryPreferences preferences;
    LanguageSettings settings{preferences};
    L10n texts{preferences};
    std::vector<std::string> seen;

    void SetUp() override {
        QObject::connect(&settings, &LanguageSettings::languageChanged, &settings,
                         [this] { look(); });
    }

private:
    /// What a view that draws itself now would show.
    void look() {
        seen.push_back(std::string(rawValue(settings.language())) + " " +
                       texts.text(L10n::Key::close));
    }
};

TEST_F(LanguageChangeTest, isStoredUnderItsRawValue) {
    settings.setLanguage(english);
    EXPECT_EQ(settings.language(), english);
    settings.setLanguage(chinese);
    EXPECT_EQ(settings.language(), chinese);
    EXPECT_EQ(preferences.stored,
              (Stored{{Preference::appLanguage, "en"}, {Preference::appLanguage, "zh-Hans"}}));
}

TEST_F(LanguageChangeTest, isFollowedByTheNextText) {
    EXPECT_EQ(texts.text(L10n::Key::ok), "好");
    settings.setLanguage(english);
    EXPECT_EQ(texts.text(L10n::Key::ok), "OK");
    settings.setLanguage(chinese);
    EXPECT_EQ(texts.text(L10n::Key::ok), "好");
}

TEST_F(LanguageChangeTest, isHeardOfOnceAfterItWasStored) {
    settings.setLanguage(english);
    EXPECT_EQ(seen, (std::vector<std::string>{"en Close"}));
    seen.clear();
    settings.setLanguage(chinese);
    EXPECT_EQ(seen, (std::vector<std::string>{"zh-Hans 关闭"}));
}

TEST_F(LanguageChangeTest, toTheSameLanguageIsStoredAndHeardOfToo) {
    settings.setLanguage(chinese); // the default becomes a choice
    EXPECT_EQ(preferences.stored, (Stored{{Preference::appLanguage, "zh-Hans"}}));
    EXPECT_EQ(seen, (std::vector<std::string>{"zh-Hans 关闭"}));
}

TEST_F(LanguageChangeTest, reachesEveryObserver) {
    int others = 0;
    QObject::connect(&settings, &LanguageSettings::languageChanged, &settings, [&] { ++others; });
    QObject::connect(&settings, &LanguageSettings::languageChanged, &settings, [&] { ++others; });
    settings.setLanguage(english);
    EXPECT_EQ(others, 2);
}

TEST_F(LanguageChangeTest, leavesTheRecordingFolderAlone) {
    preferences.values[Preference::outputDirectory] = "/recordings";
    settings.setLanguage(english);
    EXPECT_EQ(preferences.get(Preference::outputDirectory), "/recordings");
}

TEST_F(LanguageChangeTest, isWhatTheNextRunBeginsWith) {
    settings.setLanguage(english);
    EXPECT_EQ(LanguageSettings(preferences).language(), english);
}

} // namespace
} // namespace vantoro::testing

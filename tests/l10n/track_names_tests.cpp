// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/track_names.h"

#include <gtest/gtest.h>

#include "tests/support/memory_preferences.h"

namespace vantoro::testing {
namespace {

TEST(TrackNames, areInTheUsersLanguageIfTheTracksAreWanted) {
    auto preferences = preferencesIn("en");
    preferences.values[Preference::keepTracks] = "true";
    EXPECT_EQ(trackNames(preferences), (TrackNames{"system audio", "microphone"}));
    preferences.values[Preference::appLanguage] = "zh-Hans";
    EXPECT_EQ(trackNames(preferences), (TrackNames{"系统声音", "麦克风"}));
}

TEST(TrackNames, areMissingUnlessTheTracksAreWanted) {
    auto preferences = preferencesIn("en");
    EXPECT_EQ(trackNames(preferences), std::nullopt);
    for (const char* const value : {"false", "", "yes"}) {
        preferences.values[Preference::keepTracks] = value;
        EXPECT_EQ(trackNames(preferences), std::nullopt) << value;
    }
}

} // namespace
} // namespace vantoro::testing

// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/texts/doctor_texts.h"

#include <set>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

constexpr auto lastText = static_cast<std::uint8_t>(DoctorText::interruptedUnknown);

/// The numbers of the places in a text.
std::multiset<char> places(const std::string& text) {
    std::multiset<char> numbers;
    for (auto at = text.find('%'); at != std::string::npos; at = text.find('%', at + 1)) {
        numbers.insert(text.at(at + 1));
    }
    return numbers;
}

TEST(DoctorTextsTest, eachIsThereInBothLanguagesWithTheSamePlaces) {
    std::set<std::string> seen;
    for (std::uint8_t number = 0; number <= lastText; ++number) {
        const auto text = static_cast<DoctorText>(number);
        const auto english = doctorText(text, AppLanguage::english);
        const auto chinese = doctorText(text, AppLanguage::chinese);
        EXPECT_NE(english, "") << int{number};
        EXPECT_NE(chinese, "") << int{number};
        EXPECT_EQ(places(english), places(chinese)) << english;
        EXPECT_TRUE(seen.insert(english).second) << english;
        EXPECT_TRUE(seen.insert(chinese).second) << chinese;
    }
    // NOLINTNEXTLINE(clang-analyzer-optin.core.EnumCastOutOfRange): the subject of the test
    EXPECT_EQ(doctorText(static_cast<DoctorText>(lastText + 1), AppLanguage::english), "");
}

TEST(DoctorTextsTest, argumentsAreInsertedUnchanged) {
    EXPECT_EQ(doctorText(DoctorText::folderSpace, AppLanguage::english, {"/%2/%1", "1 %"}),
              "Recording folder: /%2/%1, 1 % free");
    EXPECT_EQ(doctorText(DoctorText::outputs, AppLanguage::chinese, {"3"}), "输出设备：3 个");
    EXPECT_EQ(doctorText(DoctorText::microphone, AppLanguage::english), "Microphone: %1");
}

} // namespace
} // namespace vantoro::testing

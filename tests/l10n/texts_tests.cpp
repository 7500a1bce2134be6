// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "l10n/l10n.h"

namespace vantoro::testing {
namespace {

using Key = L10n::Key;

/// The name of an enumerator, as the compiler knows it; empty for a number that is none.
template <auto Value>
std::string enumeratorName() {
    const std::string signature = __PRETTY_FUNCTION__;
    const auto qualifier = signature.find("Key::");
    const auto begin = qualifier == std::string::npos ? signature.size() : qualifier + 5;
    return signature.substr(begin, signature.find_first_of(";]", begin) - begin);
}

template <std::size_t... Numbers>
std::vector<std::string> enumeratorNames(std::index_sequence<Numbers...> /*numbers*/) {
    std::vector<std::string> names{enumeratorName<static_cast<Key>(Numbers)>()...};
    while (!names.empty() && names.back().empty()) {
        names.pop_back();
    }
    return names;
}

/// Every key's name, in the order of declaration.
std::vector<std::string> keyNames() {
    return enumeratorNames(std::make_index_sequence<256>());
}

using Row = std::vector<std::string>;

/// A line for each key: its name and, if it has them, its English and its Chinese text.
std::vector<Row> expectedRows() {
    std::ifstream file(EXPECTED_TEXTS);
    std::string line;
    std::getline(file, line);
    EXPECT_EQ(line, "key\tenglish\tchinese");
    std::vector<Row> rows;
    while (std::getline(file, line)) {
        Row row;
        for (std::size_t begin = 0; begin <= line.size();) {
            const auto end = std::min(line.find('\t', begin), line.size());
            row.push_back(line.substr(begin, end - begin));
            begin = end + 1;
        }
        rows.push_back(row);
    }
    return rows;
}

std::map<std::string, std::string> named(const L10n::Table& table) {
    const auto names = keyNames();
    std::map<std::string, std::string> result;
    for (const auto& [key, text] : table) {
        result[names.at(static_cast<std::size_t>(key))] = text;
    }
    return result;
}

std::map<std::string, std::string> expectedColumn(std::size_t column) {
    std::map<std::string, std::string> result;
    for (const auto& row : expectedRows()) {
        if (row.size() > 1) {
            result[row.front()] = row.at(column);
        }
    }
    return result;
}

TEST(TextsTest, keysAreTheExpectedOnesInTheirOrder) {
    std::vector<std::string> expected;
    for (const auto& row : expectedRows()) {
        expected.push_back(row.front());
    }
    EXPECT_EQ(expected.size(), 61U);
    EXPECT_EQ(keyNames(), expected);
}

TEST(TextsTest, englishTableIsTheExpectedOne) {
    EXPECT_EQ(named(L10n::english()), expectedColumn(1));
}

TEST(TextsTest, chineseTableIsTheExpectedOne) {
    EXPECT_EQ(named(L10n::chinese()), expectedColumn(2));
}

TEST(TextsTest, everyKeyGivesTheTextOfItsRowInEitherLanguage) {
    const auto rows = expectedRows();
    for (std::size_t number = 0; number < rows.size(); ++number) {
        const auto& row = rows[number];
        const auto key = static_cast<Key>(number);
        const bool hasTexts = row.size() > 1;
        EXPECT_EQ(L10n::text(key, AppLanguage::english), hasTexts ? row.at(1) : "") << row.front();
        EXPECT_EQ(L10n::text(key, AppLanguage::chinese), hasTexts ? row.at(2) : "") << row.front();
    }
}

TEST(TextsTest, keysOfComposedTextsHaveNoRow) {
    for (const auto key :
         {Key::recoveredOne, Key::recoveredMany, Key::checkpointKept, Key::recordingFailed}) {
        EXPECT_FALSE(L10n::english().contains(key));
        EXPECT_FALSE(L10n::chinese().contains(key));
    }
    EXPECT_EQ(L10n::english().size(), 57U);
    EXPECT_EQ(L10n::chinese().size(), 57U);
}

TEST(TextsTest, keysThatShareATextInOneLanguageDifferInTheOther) {
    using enum AppLanguage;
    EXPECT_EQ(L10n::text(Key::recording, english), L10n::text(Key::recordingPanel, english));
    EXPECT_NE(L10n::text(Key::recording, chinese), L10n::text(Key::recordingPanel, chinese));
    EXPECT_EQ(L10n::text(Key::microphone, chinese), L10n::text(Key::microphoneMeter, chinese));
    EXPECT_NE(L10n::text(Key::microphone, english), L10n::text(Key::microphoneMeter, english));
}

TEST(TextsTest, numberThatIsNoKeyGivesTheEmptyText) {
    for (const auto language : allLanguages) {
        // NOLINTNEXTLINE(clang-analyzer-optin.core.EnumCastOutOfRange): the subject of the test
        EXPECT_EQ(L10n::text(static_cast<Key>(255), language), "");
    }
}

} // namespace
} // namespace vantoro::testing

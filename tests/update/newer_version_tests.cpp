// SPDX-License-Identifier: GPL-3.0-or-later

#include "update/update_metadata.h"

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

const QString base("https://example.org");

/// A record without a `url`.
UpdateMetadata recordOf(const std::string& version, const std::string& filename = "a") {
    return {.version = version, .filename = filename, .url = std::nullopt};
}

TEST(NewerVersionTest, isNoneForTheLatestAndForNewer) {
    struct Case {
        const char* current;
        const char* latest;
    };

    for (const auto& [current, latest] : {
             Case{"1.2", "1.2"},
             Case{"1.2", "1.2.0"},
             Case{"1.2.0", "1.2"},
             Case{"1.10", "1.9"},
             Case{"1.2.3", "1.2.3-beta"},
             Case{"1.0", "v2.0"},
             Case{"0.1", ""},
         }) {
        EXPECT_EQ(newerVersion(recordOf(latest), current, base), std::nullopt) << current << latest;
    }
}

TEST(NewerVersionTest, isVerbatimFromTheServer) {
    for (const auto* latest : {"1.10", "1.9.1", "2", "2..0.beta", "+2.01"}) {
        const auto newer = newerVersion(recordOf(latest), "1.9", base);
        ASSERT_TRUE(newer.has_value() && newer->has_value()) << latest;
        EXPECT_EQ((*newer)->version, latest);
    }
}

TEST(NewerVersionTest, liesUnderItsFileNameOnTheServer) {
    struct Case {
        const char* filename;
        QString location;
    };

    for (const auto& [filename, location] : std::vector<Case>{
             {"Vantoro-2.0.tar.gz", "https://example.org/downloads/Vantoro-2.0.tar.gz"},
             {"", "https://example.org/downloads/"},
             {"a?b#c", "https://example.org/downloads/a?b#c"},
             {"a%20b", "https://example.org/downloads/a%20b"},
             {"../a", "https://example.org/downloads/../a"},
             {"größe", "https://example.org/downloads/größe"},
         }) {
        const auto newer = newerVersion(recordOf("2.0", filename), "1.0", base);
        ASSERT_TRUE(newer.has_value() && newer->has_value()) << filename;
        EXPECT_EQ((*newer)->location, QUrl(location)) << filename;
    }
}

TEST(NewerVersionTest, cannotLieUnderANameThatMakesNoValidLocation) {
    for (const auto* filename : {"a b", "a%", "a\\b", "<a>", "a\n"}) {
        EXPECT_EQ(newerVersion(recordOf("2.0", filename), "1.0", base),
                  std::unexpected(UpdateError::invalidResponse))
            << filename;
        EXPECT_EQ(newerVersion(recordOf("1.0", filename), "1.0", base), std::nullopt) << filename;
    }
}

TEST(NewerVersionTest, liesWhereTheServerSaysWhateverTheFileName) {
    for (const QString location :
         {"https://elsewhere.example/a", "http://elsewhere.example/a", "a/b"}) {
        const UpdateMetadata metadata{.version = "2.0", .filename = "a b", .url = QUrl(location)};
        const auto newer = newerVersion(metadata, "1.0", base);
        ASSERT_TRUE(newer.has_value() && newer->has_value());
        EXPECT_EQ(**newer, (NewerVersion{.version = "2.0", .location = QUrl(location)}));
    }
}

} // namespace
} // namespace vantoro::testing

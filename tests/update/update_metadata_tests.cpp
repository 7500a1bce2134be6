// SPDX-License-Identifier: GPL-3.0-or-later

#include "update/update_metadata.h"

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

const QUrl location("https://example.org/a");
const UpdateMetadata complete{.version = "1.4.0", .filename = "a.tar.gz", .url = location};
const UpdateMetadata without{.version = "1.4.0", .filename = "a.tar.gz", .url = std::nullopt};

TEST(UpdateMetadataTest, areReadFromAJsonObject) {
    struct Case {
        QByteArray json;
        UpdateMetadata metadata;
    };

    for (const auto& [json, metadata] : std::vector<Case>{
             {R"({"version":"1.4.0","filename":"a.tar.gz","url":"https://example.org/a"})",
              complete},
             {R"( { "url" : "https:\/\/example.org\/a",
                 "filename":"a.tar.gz", "version":"1.\u0034.0" } )",
              complete},
             {R"({"version":"1.4.0","filename":"a.tar.gz"})", without},
             {R"({"version":"1.4.0","filename":"a.tar.gz","url":null})", without},
             {R"({"version":"1.4.0","filename":"a.tar.gz","size":5,"Url":7,"notes":{"url":[]}})",
              without},
             {R"({"version":"","filename":""})",
              {.version = "", .filename = "", .url = std::nullopt}},
             {R"({"version":"二","filename":"\ud83d\ude00","url":"a/b"})",
              {.version = "二", .filename = "😀", .url = QUrl("a/b")}},
         }) {
        const auto read = UpdateMetadata::decode(json);
        ASSERT_TRUE(read.has_value()) << json.toStdString();
        EXPECT_EQ(*read, metadata) << json.toStdString();
    }
}

TEST(UpdateMetadataTest, areInvalidWithoutWhatIsRequired) {
    for (const QByteArray json : {
             R"({})",
             R"({"version":"1"})",
             R"({"filename":"a"})",
             R"({"Version":"1","filename":"a"})",
             R"({"version":null,"filename":"a"})",
             R"({"version":"1","filename":null})",
         }) {
        EXPECT_EQ(UpdateMetadata::decode(json), std::unexpected(UpdateError::invalidResponse))
            << json.toStdString();
    }
}

TEST(UpdateMetadataTest, areInvalidWithAWrongType) {
    for (const QByteArray value : {"1.5", "1", "true", "[]", R"(["a"])", "{}", R"({"a":"a"})"}) {
        for (const QByteArray& json : {
                 R"({"version":)" + value + R"(,"filename":"a"})",
                 R"({"version":"1","filename":)" + value + "}",
                 R"({"version":"1","filename":"a","url":)" + value + "}",
             }) {
            EXPECT_FALSE(UpdateMetadata::decode(json).has_value()) << json.toStdString();
        }
    }
}

TEST(UpdateMetadataTest, areInvalidWithAnInvalidURL) {
    for (const QByteArray url : {"", " ", "https://example.org/a b", "https://example.org/%",
                                 "https://[", R"(https://example.org/\ud83d)"}) {
        const QByteArray json = R"({"version":"1","filename":"a","url":")" + url + "\"}";
        EXPECT_FALSE(UpdateMetadata::decode(json).has_value()) << json.toStdString();
    }
}

TEST(UpdateMetadataTest, areInvalidWithAnUnpairedSurrogate) {
    EXPECT_FALSE(UpdateMetadata::decode(R"({"version":"1\ud83d","filename":"a"})").has_value());
    EXPECT_FALSE(UpdateMetadata::decode(R"({"version":"1","filename":"\ude00"})").has_value());
}

TEST(UpdateMetadataTest, areInvalidUnlessTheyAreOneJsonObject) {
    const QByteArray object = R"({"version":"1","filename":"a"})";
    ASSERT_TRUE(UpdateMetadata::decode(object).has_value());
    for (const QByteArray& json :
         {QByteArray(), QByteArray("null"), QByteArray("1"), QByteArray("\"1\""),
          "[" + object + "]", object + object, object + "x", object.chopped(1),
          QByteArray("<html></html>"), QByteArray(R"({"version":"1","filename":"a",})"),
          QByteArray("{'version':'1','filename':'a'}"),
          QByteArray("{\"version\":\"1\",\"filename\":\"\xff\"}")}) {
        EXPECT_FALSE(UpdateMetadata::decode(json).has_value()) << json.toStdString();
    }
}

} // namespace
} // namespace vantoro::testing

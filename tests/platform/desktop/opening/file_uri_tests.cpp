// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/opening/file_uri.h"

#include <filesystem>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

TEST(FileURITest, isMadeOfAnyBytesInAName) {
    struct Case {
        const char* file;
        const char* uri;
    };

    for (const auto& [file, uri] : {
             Case{"/a/b.m4a", "file:///a/b.m4a"},
             Case{"/with space/b", "file:///with%20space/b"},
             Case{"/100%/#1?", "file:///100%25/%231%3F"},
             Case{"/\xC3\xBC", "file:///%C3%BC"},
             Case{"/\xFC\xFF", "file:///%FC%FF"}, // not UTF-8
             Case{"/line\nbreak", "file:///line%0Abreak"},
             Case{"/", "file:///"},
         }) {
        EXPECT_EQ(desktop::fileURI(file), uri);
        EXPECT_EQ(desktop::fileOfURI(uri), file);
    }
}

TEST(FileURITest, relativeFileIsTakenFromTheCurrentFolder) {
    EXPECT_EQ(desktop::fileURI("some file"),
              desktop::fileURI(std::filesystem::current_path() / "some file"));
}

TEST(FileURITest, otherAddressesAreNoFiles) {
    for (const auto* address : {"", "https://example.org/a", "file", "file://elsewhere/a", "/a"}) {
        const auto file = desktop::fileOfURI(address);
        EXPECT_FALSE(file) << address << " " << file.value_or("");
    }
}

} // namespace
} // namespace vantoro::testing

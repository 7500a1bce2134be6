// SPDX-License-Identifier: GPL-3.0-or-later

#include "update/valid_url.h"

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

TEST(ValidURLTest, isAbsoluteOrRelative) {
    for (const QString text :
         {"https://example.org/a.tar.gz", "http://example.org", "https://example.org:8443/a?b=c#d",
          "https://[::1]/a", "https://example.org/%20", "https://example.org/Größe",
          "downloads/a.tar.gz", "/downloads/a", "//example.org/a", "?a", "#a", "mailto:a@b",
          "file:///etc/hosts"}) {
        EXPECT_EQ(validURL(text), QUrl(text)) << text.toStdString();
    }
}

TEST(ValidURLTest, isNotRepaired) {
    for (const QString text :
         {"", " ", "https://example.org/a b", " https://example.org", "https://example.org/a ",
          "https://example.org/a\nb", "https://example.org/%zz", "%", "https://[::1",
          "https://example.org:99999/", "https://example.org:x/", "https://exam ple.org/",
          "https://example.org/<a>", "https://example.org/a\\b", "https://example.org/{a}",
          "1:2"}) {
        EXPECT_EQ(validURL(text), std::nullopt) << text.toStdString();
    }
}

TEST(ValidURLTest, hasNoUnpairedSurrogate) {
    EXPECT_EQ(validURL(QString("https://example.org/") + QChar(0xd83d)), std::nullopt);
}

TEST(WebLocationTest, isAWebLocationOnlyWithHttpAndAHost) {
    for (const QString text : {"https://example.org/a", "http://example.org/a",
                               "HTTPS://EXAMPLE.ORG", "https://user@example.org:1/a"}) {
        EXPECT_TRUE(isWebLocation(QUrl(text))) << text.toStdString();
    }
    for (const QString text :
         {"", "a", "/a", "//example.org/a", "file:///etc/hosts", "file://example.org/a",
          "ftp://example.org/a", "mailto:a@b", "javascript:alert(1)", "data:text/html,a",
          "smb://example.org/a", "https:", "https://", "https:///a", "https:a", "http:/a",
          "httpsx://example.org", "https://example.org:99999/"}) {
        EXPECT_FALSE(isWebLocation(QUrl(text, QUrl::StrictMode))) << text.toStdString();
    }
}

} // namespace
} // namespace vantoro::testing

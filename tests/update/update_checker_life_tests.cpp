// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/update/update_checker_fixture.h"

namespace vantoro::testing {
namespace {

using enum UpdateChecker::Property;

/// What others observe of a checker, and when.
using UpdateCheckerLifeTest = UpdateCheckerTest;

TEST_F(UpdateCheckerLifeTest, publishesEachChangeInOrder) {
    checker->checkForUpdates();
    EXPECT_EQ(seen, (Seen{isChecking, message, downloadURL}));
    seen.clear();
    EXPECT_TRUE(EventLoop::runUntil([this] { return !values().isChecking; }));
    EXPECT_EQ(seen, (Seen{downloadURL, message, isChecking}));
    seen.clear();
    check("no record");
    EXPECT_EQ(seen, (Seen{isChecking, message, downloadURL, message, isChecking}));
    seen.clear();
    check(R"({"version":"1.0","filename":"a"})");
    EXPECT_EQ(seen, (Seen{isChecking, message, downloadURL, message, isChecking}));
}

TEST_F(UpdateCheckerLifeTest, forgetsTheLastResultWhenAsked) {
    check();
    ASSERT_TRUE(values().message && values().downloadURL);
    checker->checkForUpdates();
    EXPECT_TRUE(values().isChecking);
    EXPECT_EQ(values().message, std::nullopt);
    EXPECT_EQ(values().downloadURL, std::nullopt);
}

TEST_F(UpdateCheckerLifeTest, ignoresARequestWhileACheckRuns) {
    checker->checkForUpdates();
    seen.clear();
    checker->checkForUpdates();
    EXPECT_EQ(seen, Seen());
    ASSERT_TRUE(EventLoop::runUntil([this] { return !values().isChecking; }));
    EXPECT_EQ(server.requests.size(), 1U);
    beginCheckThatWaits();
    seen.clear();
    checker->checkForUpdates();
    EXPECT_EQ(seen, Seen());
    EXPECT_TRUE(values().isChecking);
    EXPECT_EQ(server.requests.size(), 2U);
}

TEST_F(UpdateCheckerLifeTest, canStartAgainFromTheEndNotification) {
    int checks = 1;
    QObject::connect(checker.get(), &UpdateChecker::propertyChanged, [&](Property property) {
        if (property == isChecking && !values().isChecking && checks < 3) {
            ++checks;
            checker->checkForUpdates();
        }
    });
    checker->checkForUpdates();
    EXPECT_TRUE(EventLoop::runUntil([&] { return checks == 3 && !values().isChecking; }));
    EXPECT_EQ(server.requests.size(), 3U);
    EXPECT_EQ(values().message, "Version 2.0 is available.");
}

TEST_F(UpdateCheckerLifeTest, usesTheLanguageAtTheAnswer) {
    QSslSocket* asking = nullptr;
    answer = [&](QSslSocket& connection, const QByteArray&) { asking = &connection; };
    const auto textIn = [&](const QByteArray& record, const std::string& language) {
        asking = nullptr;
        checker->checkForUpdates();
        EXPECT_TRUE(EventLoop::runUntil([&] { return asking != nullptr; }));
        preferences.values[Preference::appLanguage] = language;
        asking->write(response(200, record));
        EXPECT_TRUE(EventLoop::runUntil([this] { return !values().isChecking; }));
        return values().message.value_or("");
    };
    EXPECT_EQ(textIn(newerRecord, "zh-Hans"), "发现新版本 2.0。");
    EXPECT_EQ(textIn(newerRecord, "en"), "Version 2.0 is available.");
    EXPECT_EQ(textIn("no record", "zh-Hans"), "检查更新失败，请稍后重试。");
    preferences.values[Preference::appLanguage] = "en";
    EXPECT_EQ(values().message, "检查更新失败，请稍后重试。"); // the language at the answer
}

TEST_F(UpdateCheckerLifeTest, opensWhatItFound) {
    checker->openDownload();
    EXPECT_EQ(opened, std::vector<QUrl>());
    check();
    checker->openDownload();
    const QUrl download(server.location() + "/downloads/Vantoro-2.0.tar.gz");
    EXPECT_EQ(opened, std::vector<QUrl>{download});
    checker->checkForUpdates();
    checker->openDownload(); // forgotten by now
    EXPECT_EQ(opened, std::vector<QUrl>{download});
}

TEST_F(UpdateCheckerLifeTest, opensOnlyWebLocations) {
    for (const QByteArray location : {"file:///etc/hostname", "downloads/a", "//example.org/a",
                                      "ftp://example.org/a", "javascript:a", "https:///a"}) {
        check(R"({"version":"2.0","filename":"a","url":")" + location + "\"}");
        EXPECT_EQ(values().downloadURL, QUrl(location)) << location.toStdString();
        checker->openDownload();
        EXPECT_EQ(opened, std::vector<QUrl>()) << location.toStdString();
    }
    check(R"({"version":"2.0","filename":"a","url":"http://example.org/a"})");
    checker->openDownload();
    EXPECT_EQ(opened, std::vector<QUrl>{QUrl("http://example.org/a")});
}

TEST_F(UpdateCheckerLifeTest, staysSilentIfDestroyedDuringARequest) {
    beginCheckThatWaits();
    seen.clear();
    checker.reset();
    EXPECT_TRUE(EventLoop::runUntil([this] { return server.closed == 1; }));
    EXPECT_EQ(seen, Seen());
}

TEST_F(UpdateCheckerLifeTest, doesNotAskIfDestroyedBefore) {
    checker->checkForUpdates();
    seen.clear();
    checker.reset();
    QCoreApplication::processEvents();
    EXPECT_EQ(seen, Seen());
    make("1.0");
    check();
    EXPECT_EQ(server.requests.size(), 1U);
}

} // namespace
} // namespace vantoro::testing

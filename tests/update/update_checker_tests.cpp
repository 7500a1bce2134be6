// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/update/update_checker_fixture.h"

#include <QtNetwork/QNetworkAccessManager>

namespace vantoro::testing {
namespace {

using namespace std::chrono_literals;

TEST_F(UpdateCheckerTest, knowsNothingBeforeItIsAsked) {
    EXPECT_FALSE(values().isChecking);
    EXPECT_EQ(values().message, std::nullopt);
    EXPECT_EQ(values().downloadURL, std::nullopt);
    EXPECT_EQ(checker->currentVersion(), "1.0");
    EXPECT_EQ(checker->metadataURL(), QUrl(server.location() + "/downloads/latest.json"));
}

TEST_F(UpdateCheckerTest, asksFromTheEventLoopOnly) {
    int questions = 0;
    make("1.0", {.baseLocation = server.location(),
                 .ask = [&, ask = askOverNetwork(trustInLocalServers())](
                            const QUrl& location, auto limit, const auto& done) {
                     ++questions;
                     return ask(location, limit, done);
                 }});
    checker->checkForUpdates();
    EXPECT_EQ(questions, 0);
    ASSERT_TRUE(EventLoop::runUntil([this] { return !values().isChecking; }));
    EXPECT_EQ(questions, 1);
}

TEST_F(UpdateCheckerTest, asksABuiltInServerOverHttpsAndWaitsQuarterOfAMinute) {
    const UpdateSource source;
    EXPECT_EQ(source.limit, 15s);
    make("1.0", source);
    EXPECT_EQ(checker->metadataURL(), QUrl(builtInBaseLocation() + "/downloads/latest.json"));
    EXPECT_TRUE(checker->metadataURL().isValid());
    EXPECT_EQ(checker->metadataURL().scheme(), "https");
}

TEST_F(UpdateCheckerTest, failsIfRequestsAreImpossible) {
    make("1.0", {.baseLocation = server.location(), .ask = [](const QUrl&, auto, const auto&) {
                     throw std::runtime_error("a part of the program cannot be loaded");
                     return std::unique_ptr<QObject>();
                 }});
    check();
    EXPECT_EQ(values().message, failed);
}

TEST_F(UpdateCheckerTest, offersANewerVersionUnderItsFileName) {
    check(newerRecord);
    EXPECT_EQ(values().message, "Version 2.0 is available.");
    EXPECT_EQ(values().downloadURL, QUrl(server.location() + "/downloads/Vantoro-2.0.tar.gz"));
    ASSERT_EQ(server.requests.size(), 1U);
    EXPECT_TRUE(server.requests[0].startsWith("GET /downloads/latest.json HTTP/1.1\r\n"));
}

TEST_F(UpdateCheckerTest, offersANewerVersionAtTheLocationThatTheServerNames) {
    check(R"({"version":"1.0.1-x.1","filename":"a","url":"https://example.org/a"})");
    EXPECT_EQ(values().message, "Version 1.0.1-x.1 is available.");
    EXPECT_EQ(values().downloadURL, QUrl("https://example.org/a"));
}

TEST_F(UpdateCheckerTest, saysSoWhenTheCurrentVersionIsTheLatestOrNewer) {
    struct Case {
        const char* current;
        const char* recorded;
    };

    for (const auto& [current, recorded] :
         {Case{"1.2", "1.2.0"}, Case{"1.2.3", "1.2.3-beta"}, Case{"1.10", "1.9"}}) {
        make(current);
        check(QByteArray(R"({"version":")") + recorded + R"(","filename":"a b"})");
        EXPECT_EQ(values().message, latest) << current;
        EXPECT_EQ(values().downloadURL, std::nullopt) << current;
    }
    make("1.9");
    check(R"({"version":"1.10","filename":"a"})");
    EXPECT_EQ(values().message, "Version 1.10 is available.");
}

TEST_F(UpdateCheckerTest, failsWithAStatusOfNoSuccess) {
    for (const int status : {304, 404, 500}) {
        answer = alwaysThenClose(response(status, newerRecord));
        check();
        expectFailure();
    }
}

TEST_F(UpdateCheckerTest, failsWithARecordThatIsNotValid) {
    for (const QByteArray record :
         {"", "<html>", "[]", "{}", R"({"version":2.0,"filename":"a"})", R"({"version":"2.0"})",
          R"({"version":"2.0","filename":"a","url":""})",
          R"({"version":"2.0","filename":"a","url":7})"}) {
        check(record);
        expectFailure();
    }
}

TEST_F(UpdateCheckerTest, failsWithAnAnswerThatIsBrokenOrTooLongOrLeadsAstray) {
    const QByteArray excess(RecordRequest::mostBytes, ' ');
    const QByteArray chunked("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
    for (const QByteArray& answered : {
             QByteArray(),
             response(200, newerRecord).chopped(1),
             chunked + "zz\r\n" + newerRecord,
             "hello\r\n\r\n" + newerRecord,
             response(200, newerRecord + excess),
             "HTTP/1.1 200 OK\r\n\r\n" + newerRecord + excess,
             response(302, newerRecord, "Location: http://127.0.0.1/\r\n"),
         }) {
        answer = alwaysThenClose(answered);
        check();
        expectFailure();
    }
}

TEST_F(UpdateCheckerTest, failsWithAFileNameThatMakesNoValidLocation) {
    check(R"({"version":"2.0","filename":"a b"})");
    expectFailure();
}

TEST_F(UpdateCheckerTest, failsWhenNoAnswerComesInTime) {
    make("1.0", {.baseLocation = server.location(),
                 .limit = 100ms,
                 .ask = askOverNetwork(trustInLocalServers())});
    answer = [](QSslSocket&, const QByteArray&) {};
    check();
    expectFailure();
}

TEST_F(UpdateCheckerTest, failsIfTheServerIsNotTrusted) {
    make("1.0", {.baseLocation = server.location(), .ask = askOverNetwork()});
    check();
    expectFailure();
    EXPECT_EQ(server.requests.size(), 0U);
}

TEST_F(UpdateCheckerTest, failsWithoutAskingWhereItWouldBeUnencryptedOrNowhere) {
    const PlainServer plain(response(200, newerRecord));
    const auto unencrypted = QString("http://127.0.0.1:%1").arg(plain.port());
    for (const QString& location : {unencrypted, QString(), QString("https://a b"),
                                    QString("https://"), QString("file://")}) {
        make("1.0", {.baseLocation = location, .ask = askOverNetwork(trustInLocalServers())});
        check();
        expectFailure();
    }
    EXPECT_EQ(plain.connections, 0);
}

} // namespace
} // namespace vantoro::testing

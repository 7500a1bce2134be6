// SPDX-License-Identifier: GPL-3.0-or-later

#include "update/record_request.h"

#include <array>
#include <chrono>
#include <memory>
#include <set>

#include <QtCore/QElapsedTimer>

#include <gtest/gtest.h>

#include "tests/control/event_loop.h"
#include "tests/update/local_server.h"

namespace vantoro::testing {
namespace {

using namespace std::chrono_literals;
using Body = RecordBody;

const Body refused = std::unexpected(UpdateError::invalidResponse);
const QByteArray record("the record");

/// A server that gives the same answer to everything, and requests that never time out before the
/// test does.
class RecordRequestTest : public ::testing::Test {
protected:
    static constexpr auto longer = 60s;

    EventLoop loop;
    LocalServer::Answer answer = always(response(200, record));
    LocalServer server{
        [this](QSslSocket& connection, const QByteArray& asked) { answer(connection, asked); }};
    QNetworkAccessManager network;
    std::optional<QSslConfiguration> tls = trustInLocalServers();
    std::unique_ptr<RecordRequest> request;
    std::optional<Body> body;

    void begin(const QString& location, std::chrono::milliseconds limit = longer) {
        body.reset();
        request = std::make_unique<RecordRequest>(network, QUrl(location), limit, tls,
                                                  [this](Body answered) {
                                                      EXPECT_FALSE(body.has_value());
                                                      body = std::move(answered);
                                                      request.reset();
                                                  });
        EXPECT_FALSE(body.has_value()); // only from the event loop
    }

    Body fetch(const QString& location, std::chrono::milliseconds limit = longer) {
        begin(location, limit);
        EXPECT_TRUE(EventLoop::runUntil([this] { return body.has_value(); }));
        return body.value_or(refused);
    }

    Body fetch() { return fetch(server.location() + "/record"); }

    Body fetch(const LocalServer::Answer& answered) {
        answer = answered;
        return fetch();
    }
};

TEST_F(RecordRequestTest, bringsWhatTheServerAnswers) {
    EXPECT_EQ(fetch(), record);
    EXPECT_EQ(fetch(always(response(200, ""))), "");
    EXPECT_EQ(fetch(alwaysThenClose("HTTP/1.1 200 OK\r\n\r\nunannounced")), "unannounced");
    EXPECT_EQ(fetch(always("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                           "3\r\nabc\r\n2\r\nde\r\n0\r\n\r\n")),
              "abcde");
}

TEST_F(RecordRequestTest, succeedsWithAStatusOfSuccessOnly) {
    for (const int status : {200, 201, 203, 206, 226, 299}) {
        EXPECT_EQ(fetch(always(response(status, record))), record) << status;
    }
    for (const int status :
         {300, 301, 302, 304, 305, 399, 400, 401, 403, 404, 407, 410, 418, 429, 500, 503, 599}) {
        EXPECT_EQ(fetch(alwaysThenClose(response(status, record))), refused) << status;
    }
}

TEST_F(RecordRequestTest, sendsOnlyTheNecessaryHeaders) {
    ASSERT_EQ(fetch(), record);
    ASSERT_EQ(server.requests.size(), 1U);
    auto lines = server.requests.front().trimmed().split('\n');
    EXPECT_EQ(lines.takeFirst().trimmed(), "GET /record HTTP/1.1");
    std::set<QByteArray> fields;
    for (const auto& line : lines) {
        fields.insert(line.left(line.indexOf(':')).toLower());
    }
    // The network library's own headers.
    EXPECT_EQ(fields,
              (std::set<QByteArray>{"host", "connection", "accept-encoding", "accept-language",
                                    "user-agent", "cache-control", "pragma"}));
}

TEST_F(RecordRequestTest, sendsNoCookies) {
    answer = always(response(200, record, "Set-Cookie: who=you; Path=/; Max-Age=9999\r\n"));
    ASSERT_EQ(fetch(), record);
    ASSERT_EQ(fetch(), record);
    ASSERT_EQ(server.requests.size(), 2U);
    EXPECT_FALSE(server.requests.back().toLower().contains("cookie"));
}

TEST_F(RecordRequestTest, bypassesCaches) {
    answer = always(response(200, record, "Cache-Control: max-age=9999, immutable\r\n"));
    ASSERT_EQ(fetch(), record);
    EXPECT_EQ(fetch(always(response(200, "newer"))), "newer");
    EXPECT_TRUE(server.requests.back().toLower().contains("cache-control: no-cache\r\n"));
}

TEST_F(RecordRequestTest, doesNotReuseConnections) {
    ASSERT_EQ(fetch(), record);
    EXPECT_TRUE(EventLoop::runUntil([this] { return server.closed == 1; }));
    ASSERT_EQ(fetch(), record);
    EXPECT_EQ(server.connections, 2);
}

TEST_F(RecordRequestTest, endsAtTheLimitHoweverTheServerDelays) {
    constexpr auto limit = 700ms;
    for (const auto& delay : {
             LocalServer::Answer([](QSslSocket&, const QByteArray&) {}),
             trickle("HTTP/1.1 200 OK\r\n", "X-Field: value\r\n"),
             trickle("HTTP/1.1 200 OK\r\nContent-Length: 60000\r\n\r\n", "x"),
             trickle("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n", "1\r\nx\r\n"),
             trickle("HTTP/1.1 200 OK\r\n\r\n", "x"),
             trickle("", "HTTP/1.1 100 Continue\r\n\r\n"),
             flood("HTTP/1.1 302 Found\r\nLocation: /\r\n\r\n", QByteArray(16384, 'x')),
         }) {
        answer = delay;
        QElapsedTimer time;
        time.start();
        EXPECT_EQ(fetch(server.location(), limit), refused);
        EXPECT_GE(time.elapsed(), limit.count());
    }
    EXPECT_EQ(server.requests.size(), 7U);
}

TEST_F(RecordRequestTest, endsAtTheLimitDuringTheHandshake) {
    const PlainServer silent;
    const auto location = QString("https://127.0.0.1:%1/").arg(silent.port());
    EXPECT_EQ(fetch(location, 100ms), refused);
    EXPECT_EQ(silent.connections, 1);
}

TEST_F(RecordRequestTest, endsAtTheLimitWhenRedirectsFollowEachOther) {
    int asked = 0;
    answer = [&](QSslSocket& connection, const QByteArray& head) {
        if (++asked < 4) {
            connection.write(response(302, "", "Location: /next\r\n"));
        } else {
            trickle("HTTP/1.1 200 OK\r\n\r\n", "x")(connection, head);
        }
    };
    EXPECT_EQ(fetch(server.location(), 1000ms), refused);
}

TEST_F(RecordRequestTest, acceptsTheLongestBodyAndNoMore) {
    const QByteArray most(RecordRequest::mostBytes, ' ');
    const QByteArray tooMuch = most + " ";
    const QByteArray unannounced("HTTP/1.1 200 OK\r\n\r\n");
    EXPECT_EQ(fetch(always(response(200, most))), most);
    EXPECT_EQ(fetch(alwaysThenClose(unannounced + most)), most);
    EXPECT_EQ(fetch(always(response(200, tooMuch))), refused);
    EXPECT_EQ(fetch(alwaysThenClose(unannounced + tooMuch)), refused);
}

TEST_F(RecordRequestTest, doesNotWaitForMoreThanIsAllowed) {
    const QByteArray block(16384, ' ');
    for (const auto& excess : {
             always("HTTP/1.1 200 OK\r\nContent-Length: 65537\r\n\r\n"),
             always("HTTP/1.1 200 OK\r\nContent-Length: 9223372036854775807\r\n\r\n"),
             flood("HTTP/1.1 200 OK\r\n\r\n", block),
             flood("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n",
                   "4000\r\n" + block + "\r\n"),
             flood("HTTP/1.1 200 OK\r\nContent-Length: 9000000000\r\n\r\n", block),
             flood("HTTP/1.1 302 Found\r\nLocation: /\r\nContent-Length: 65537\r\n\r\n", block),
             flood("HTTP/1.1 404 Not Found\r\n\r\n", block),
         }) {
        const int closedBefore = server.closed;
        EXPECT_EQ(fetch(excess), refused);
        EXPECT_TRUE(EventLoop::runUntil([&] { return server.closed == closedBefore + 1; }));
    }
}

TEST_F(RecordRequestTest, countsTheDecompressedBody) {
    const auto packed = [](qsizetype size) {
        // qCompress prepends the length; strip it.
        return always(response(200, qCompress(QByteArray(size, ' ')).mid(4),
                               "Content-Encoding: deflate\r\n"));
    };
    EXPECT_EQ(fetch(packed(RecordRequest::mostBytes)), QByteArray(RecordRequest::mostBytes, ' '));
    EXPECT_EQ(fetch(packed(RecordRequest::mostBytes + 1)), refused);
    EXPECT_EQ(fetch(packed(30'000'000)), refused);
}

TEST_F(RecordRequestTest, refusesABrokenAnswer) {
    const QByteArray chunked("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
    for (const QByteArray& broken : {
             QByteArray(),
             QByteArray("hello\r\n\r\n"),
             QByteArray("HTTP/1.1 200 OK\r\nContent-Le"),
             "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n" + record,
             chunked,
             chunked + "5\r\nab",
             chunked + "5\r\nabcde\r\n",
             response(200, record, "Content-Encoding: gzip\r\n"),
         }) {
        EXPECT_EQ(fetch(alwaysThenClose(broken)), refused) << broken.toStdString();
    }
}

TEST_F(RecordRequestTest, followsRedirectsOverHttps) {
    LocalServer other(always(response(200, "from the other")));
    for (const auto& [status, place] : std::initializer_list<std::pair<int, QByteArray>>{
             {301, "/record"},
             {302, "record"},
             {303, "/record"},
             {307, "/record"},
             {308, server.location().toUtf8() + "/record"}}) {
        answer = [&](QSslSocket& connection, const QByteArray& asked) {
            connection.write(asked.startsWith("GET /record ")
                                 ? response(200, record)
                                 : response(status, "moved", "Location: " + place + "\r\n"));
        };
        EXPECT_EQ(fetch(server.location() + "/old"), record) << status;
    }
    const auto elsewhere = "Location: " + other.location().toUtf8() + "/\r\n";
    EXPECT_EQ(fetch(always(response(302, "", elsewhere))), "from the other");
}

TEST_F(RecordRequestTest, isNotRedirectedAwayFromHttps) {
    const PlainServer plain(response(200, record));
    const auto unencrypted =
        "Location: http://127.0.0.1:" + QByteArray::number(plain.port()) + "/\r\n";
    for (const int status : {301, 302, 303, 307, 308}) {
        EXPECT_EQ(fetch(always(response(status, "", unencrypted))), refused) << status;
    }
    EXPECT_EQ(plain.connections, 0);
    for (const QByteArray place : {"file:///etc/hostname", "ftp://127.0.0.1/", "data:,record"}) {
        EXPECT_EQ(fetch(always(response(302, "", "Location: " + place + "\r\n"))), refused)
            << place.toStdString();
    }
}

TEST_F(RecordRequestTest, isRedirectedAFewTimesOnly) {
    std::set<QByteArray> paths; // the library may repeat each
    answer = [&](QSslSocket& connection, const QByteArray& asked) {
        const auto path = asked.split(' ')[1];
        paths.insert(path);
        connection.write(response(302, "", "Location: " + path + "a\r\n"));
    };
    EXPECT_EQ(fetch(server.location() + "/a"), refused);
    EXPECT_EQ(paths, (std::set<QByteArray>{"/a", "/aa", "/aaa", "/aaaa", "/aaaaa", "/aaaaaa"}));
}

TEST_F(RecordRequestTest, sendsNothingToAnUntrustedServer) {
    tls.reset(); // the system does not trust the test certificate
    EXPECT_EQ(fetch(), refused);
    EXPECT_EQ(server.requests.size(), 0U);
}

TEST_F(RecordRequestTest, sendsNothingToAServerWithAnotherName) {
    EXPECT_EQ(fetch(server.location().replace("127.0.0.1", "localhost")), refused);
    EXPECT_EQ(server.requests.size(), 0U);
}

TEST_F(RecordRequestTest, isRefusedWhereNobodyAnswers) {
    QString deserted;
    {
        const PlainServer gone;
        deserted = QString("https://127.0.0.1:%1/").arg(gone.port());
    }
    EXPECT_EQ(fetch(deserted), refused);
    const PlainServer unencrypted("HTTP/1.1 200 OK\r\n\r\n" + record);
    EXPECT_EQ(fetch(QString("https://127.0.0.1:%1/").arg(unencrypted.port())), refused);
}

TEST_F(RecordRequestTest, endsTheConnectionWhenItIsDestroyed) {
    for (const auto& pending : {
             LocalServer::Answer([](QSslSocket&, const QByteArray&) {}),
             always("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n" + record),
         }) {
        const auto heard = server.requests.size();
        const int closedBefore = server.closed;
        answer = pending;
        begin(server.location());
        ASSERT_TRUE(EventLoop::runUntil([&] { return server.requests.size() > heard; }));
        request.reset();
        EXPECT_TRUE(EventLoop::runUntil([&] { return server.closed == closedBefore + 1; }));
        EXPECT_FALSE(body.has_value());
    }
}

} // namespace
} // namespace vantoro::testing

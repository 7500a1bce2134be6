// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <vector>

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtNetwork/QSslConfiguration>
#include <QtNetwork/QSslServer>
#include <QtNetwork/QSslSocket>
#include <QtNetwork/QTcpServer>

namespace vantoro::testing {

/// A web server on localhost, in the test's event loop.
class LocalServer {
public:
    /// Writes the response to a request, of which it gets the head.
    using Answer = std::function<void(QSslSocket& connection, const QByteArray& request)>;

    explicit LocalServer(Answer answer);

    /// Without a trailing slash.
    QString location() const;

    std::vector<QByteArray> requests; ///< the heads, in order
    int connections = 0;              ///< that completed the TLS handshake
    int closed = 0;                   ///< of those

private:
    void meet(QSslSocket* connection);

    Answer answer_;
    QSslServer server_;
};

/// A server without TLS, which counts the connections and greets each.
class PlainServer {
public:
    explicit PlainServer(QByteArray greeting = {});

    quint16 port() const { return server_.serverPort(); }

    int connections = 0;

private:
    QByteArray greeting_;
    QTcpServer server_;
};

/// Trusts only the local server.
QSslConfiguration trustInLocalServers();

/// A response with this status and these header lines, each ending in CRLF, and a body with its
/// length.
QByteArray response(int status, const QByteArray& body, const QByteArray& fields = {});

/// Answers every request alike.
LocalServer::Answer always(const QByteArray& bytes);
/// As above, then closes the connection.
LocalServer::Answer alwaysThenClose(const QByteArray& bytes);
/// Starts with `beginning`, then sends `more` every few milliseconds while the client stays
/// connected.
LocalServer::Answer trickle(const QByteArray& beginning, const QByteArray& more);
/// Starts with `beginning`, then sends `more` as fast as possible.
LocalServer::Answer flood(const QByteArray& beginning, const QByteArray& more);

} // namespace vantoro::testing

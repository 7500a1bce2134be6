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

/// A web server on this machine. It runs in the test's event loop.
class LocalServer {
public:
    /// Writes to the connection whatever it likes to what the other side asked: the head of a
    /// request.
    using Answer = std::function<void(QSslSocket& connection, const QByteArray& request)>;

    explicit LocalServer(Answer answer);

    /// Without a slash at the end.
    QString location() const;

    std::vector<QByteArray> requests; ///< their heads, in order
    int connections = 0;              ///< that agreed on a key
    int closed = 0;                   ///< of those

private:
    void meet(QSslSocket* connection);

    Answer answer_;
    QSslServer server_;
};

/// A server without encryption, which counts who connects and says this to each.
class PlainServer {
public:
    explicit PlainServer(QByteArray greeting = {});

    quint16 port() const { return server_.serverPort(); }

    int connections = 0;

private:
    QByteArray greeting_;
    QTcpServer server_;
};

/// Trusts the local server, and nobody else.
QSslConfiguration trustInLocalServers();

/// An answer of this status with fields, each ended as in a head, and a body of announced length.
QByteArray response(int status, const QByteArray& body, const QByteArray& fields = {});

/// The same to every request.
LocalServer::Answer always(const QByteArray& bytes);
/// The same, and the connection ends behind it.
LocalServer::Answer alwaysThenClose(const QByteArray& bytes);
/// Begins so, and goes on with `more` every few milliseconds for as long as somebody listens.
LocalServer::Answer trickle(const QByteArray& beginning, const QByteArray& more);
/// Begins so, and goes on with `more` as fast as it is taken.
LocalServer::Answer flood(const QByteArray& beginning, const QByteArray& more);

} // namespace vantoro::testing

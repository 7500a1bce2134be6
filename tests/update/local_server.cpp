// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/update/local_server.h"

#include <stdexcept>
#include <utility>

#include <QtCore/QFile>
#include <QtCore/QTimer>
#include <QtNetwork/QHostAddress>
#include <QtNetwork/QSslCertificate>
#include <QtNetwork/QSslKey>

namespace vantoro::testing {

namespace {

QByteArray contentOf(const QString& name) {
    QFile file(QString(TEST_IDENTITY) + "/" + name);
    if (!file.open(QIODevice::ReadOnly)) {
        throw std::runtime_error("cannot read " + file.fileName().toStdString());
    }
    return file.readAll();
}

void listen(QTcpServer& server) {
    if (!server.listen(QHostAddress::LocalHost)) {
        throw std::runtime_error("cannot listen: " + server.errorString().toStdString());
    }
}

} // namespace

LocalServer::LocalServer(Answer answer) : answer_(std::move(answer)) {
    QSslConfiguration identity;
    identity.setLocalCertificate(QSslCertificate(contentOf("certificate.pem")));
    identity.setPrivateKey(QSslKey(contentOf("key.pem"), QSsl::Ec));
    server_.setSslConfiguration(identity);
    QObject::connect(&server_, &QTcpServer::pendingConnectionAvailable, &server_, [this] {
        while (server_.hasPendingConnections()) {
            meet(qobject_cast<QSslSocket*>(server_.nextPendingConnection()));
        }
    });
    listen(server_);
}

QString LocalServer::location() const {
    return QString("https://127.0.0.1:%1").arg(server_.serverPort());
}

void LocalServer::meet(QSslSocket* connection) {
    ++connections;
    const auto read = [this, connection, head = QByteArray()]() mutable {
        head += connection->readAll();
        if (head.endsWith("\r\n\r\n")) {
            requests.push_back(std::exchange(head, {}));
            answer_(*connection, requests.back());
        }
    };
    QObject::connect(connection, &QSslSocket::readyRead, &server_, read);
    QObject::connect(connection, &QSslSocket::disconnected, &server_, [this] { ++closed; });
}

PlainServer::PlainServer(QByteArray greeting) : greeting_(std::move(greeting)) {
    QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this] {
        ++connections;
        server_.nextPendingConnection()->write(greeting_);
    });
    listen(server_);
}

QSslConfiguration trustInLocalServers() {
    auto trust = QSslConfiguration::defaultConfiguration();
    trust.setCaCertificates({QSslCertificate(contentOf("certificate.pem"))});
    return trust;
}

QByteArray response(int status, const QByteArray& body, const QByteArray& fields) {
    return "HTTP/1.1 " + QByteArray::number(status) + " Status\r\n" + fields +
           "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

LocalServer::Answer always(const QByteArray& bytes) {
    return [bytes](QSslSocket& connection, const QByteArray&) { connection.write(bytes); };
}

LocalServer::Answer alwaysThenClose(const QByteArray& bytes) {
    return [bytes](QSslSocket& connection, const QByteArray&) {
        connection.write(bytes);
        connection.disconnectFromHost();
    };
}

LocalServer::Answer trickle(const QByteArray& beginning, const QByteArray& more) {
    return [beginning, more](QSslSocket& connection, const QByteArray&) {
        connection.write(beginning);
        auto* const timer = new QTimer(&connection);
        QObject::connect(timer, &QTimer::timeout, &connection,
                         [&connection, more] { connection.write(more); });
        timer->start(std::chrono::milliseconds(5));
    };
}

LocalServer::Answer flood(const QByteArray& beginning, const QByteArray& more) {
    return [beginning, more](QSslSocket& connection, const QByteArray&) {
        QObject::connect(&connection, &QSslSocket::encryptedBytesWritten, &connection,
                         [&connection, more] {
                             if (connection.encryptedBytesToWrite() == 0) {
                                 connection.write(more);
                             }
                         });
        connection.write(beginning + more);
    };
}

} // namespace vantoro::testing

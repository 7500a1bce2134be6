// SPDX-License-Identifier: GPL-3.0-or-later

#include "update/record_request.h"

#include <utility>

#include <QtNetwork/QNetworkRequest>

namespace vantoro {

namespace {

constexpr int mostRedirects = 5;

QNetworkRequest requestFor(const QUrl& location, const std::optional<QSslConfiguration>& tls) {
    QNetworkRequest request(location);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(mostRedirects);
    // One small file gains nothing from HTTP/2.
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    // The computer may sleep before the next check, and the connection die unnoticed.
    request.setAttribute(QNetworkRequest::ConnectionCacheExpiryTimeoutSecondsAttribute, 0);
    if (tls) {
        request.setSslConfiguration(*tls);
    }
    return request;
}

bool isSuccess(const QNetworkReply& reply) {
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    return reply.error() == QNetworkReply::NoError && status >= 200 && status <= 299;
}

} // namespace

RecordRequest::RecordRequest(QNetworkAccessManager& network, const QUrl& location,
                             std::chrono::milliseconds limit,
                             const std::optional<QSslConfiguration>& tls,
                             std::function<void(RecordBody)> done)
    : done_(std::move(done)), reply_(network.get(requestFor(location, tls))) {
    reply_->setReadBufferSize(mostBytes);
    connect(reply_, &QNetworkReply::metaDataChanged, this, [this] {
        if (reply_->header(QNetworkRequest::ContentLengthHeader).toLongLong() > mostBytes) {
            refuse();
        }
    });
    connect(reply_, &QNetworkReply::readyRead, this, [this] {
        if (!readAvailable()) {
            refuse();
        }
    });
    connect(reply_, &QNetworkReply::finished, this, &RecordRequest::finish);
    // Not the network's own limit, which restarts with every byte.
    connect(&limit_, &QTimer::timeout, this, &RecordRequest::refuse);
    limit_.setSingleShot(true);
    limit_.setTimerType(Qt::PreciseTimer);
    limit_.start(limit);
}

RecordRequest::~RecordRequest() {
    stop();
    reply_->deleteLater();
}

void RecordRequest::finish() {
    if (readAvailable() && isSuccess(*reply_)) {
        conclude(std::move(body_));
    } else {
        refuse();
    }
}

void RecordRequest::conclude(RecordBody body) {
    stop();
    std::exchange(done_, {})(std::move(body)); // may destroy this
}

void RecordRequest::refuse() {
    conclude(std::unexpected(UpdateError::invalidResponse));
}

/// False if the body is too long.
bool RecordRequest::readAvailable() {
    body_ += reply_->readAll();
    return body_.size() <= mostBytes;
}

void RecordRequest::stop() {
    limit_.stop();
    reply_->disconnect(this); // so that aborting it does not call `finish`
    reply_->abort();
}

AskForRecord askOverNetwork(std::optional<QSslConfiguration> tls) {
    return [tls = std::move(tls), network = std::shared_ptr<QNetworkAccessManager>()](
               const QUrl& location, std::chrono::milliseconds limit,
               std::function<void(RecordBody)> done) mutable {
        if (!network) {
            network = std::make_shared<QNetworkAccessManager>();
        }
        return std::make_unique<RecordRequest>(*network, location, limit, tls, std::move(done));
    };
}

} // namespace vantoro

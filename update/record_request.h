// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <functional>
#include <optional>

#include <QtCore/QObject>
#include <QtCore/QTimer>
#include <QtNetwork/QNetworkAccessManager>
#include <QtNetwork/QNetworkReply>
#include <QtNetwork/QSslConfiguration>

#include "update/record_question.h"

namespace vantoro {

/// One HTTPS GET that does not trust the server: it limits time and memory, and discloses nothing
/// about the user. Main thread; never blocks.
class RecordRequest final : public QObject {
public:
    /// The longest body, in bytes. A longer one is refused as soon as it is announced or received,
    /// before and after decompression.
    static constexpr qsizetype mostBytes = 65536;

    /// Bypasses all caches. Follows redirects to HTTPS only. `limit` runs from now to the last
    /// byte. `tls` replaces the system's trust settings. Calls `done` once, from the event loop,
    /// with the body of a successful answer; `done` may destroy this.
    RecordRequest(QNetworkAccessManager& network, const QUrl& location,
                  std::chrono::milliseconds limit, const std::optional<QSslConfiguration>& tls,
                  std::function<void(RecordBody)> done);
    RecordRequest(const RecordRequest&) = delete;
    RecordRequest& operator=(const RecordRequest&) = delete;
    /// Closes the connection; `done` is not called any more.
    ~RecordRequest() override;

private:
    void finish();
    void conclude(RecordBody body);
    void refuse();
    bool readAvailable();
    void stop();

    std::function<void(RecordBody)> done_;
    QTimer limit_;
    QNetworkReply* reply_; // owned by the network manager; deleted through the event loop
    QByteArray body_;
};

/// Asks over the network; sets the network up on the first request. `tls` as above.
AskForRecord askOverNetwork(std::optional<QSslConfiguration> tls = {});

} // namespace vantoro

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

/// One GET over HTTPS that trusts the server with nothing: neither with our time nor with our
/// memory, and with no more about the user than that somebody asks. Main thread; blocks nowhere.
class RecordRequest final : public QObject, public RecordQuestion {
public:
    /// A longer body is refused as soon as it is announced or seen, before and after unpacking.
    static constexpr qsizetype mostBytes = 65536;

    /// Asks past every cache. Redirects lead to HTTPS only. `limit` counts from now to the last
    /// byte. `tls` takes the place of what the system trusts. `done` is called once, from the event
    /// loop, and may destroy this; the body is that of an answer of success.
    RecordRequest(QNetworkAccessManager& network, const QUrl& location,
                  std::chrono::milliseconds limit, const std::optional<QSslConfiguration>& tls,
                  std::function<void(RecordBody)> done);
    RecordRequest(const RecordRequest&) = delete;
    RecordRequest& operator=(const RecordRequest&) = delete;
    /// Ends the connection; `done` is not called any more.
    ~RecordRequest() override;

private:
    void refuseAnnouncedExcess();
    void receive();
    void finish();
    void conclude(RecordBody body);
    bool takeWhatIsThere();
    void stop();

    std::function<void(RecordBody)> done_;
    QTimer limit_;
    QNetworkReply* reply_; // the network's, and deleted through the event loop
    QByteArray body_;
};

/// Asks over the network, which is set up for the first question. `tls` as above.
AskForRecord askOverNetwork(std::optional<QSslConfiguration> tls = {});

} // namespace vantoro

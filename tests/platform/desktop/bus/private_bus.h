// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <utility>

#include <sys/types.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>
#include <QtCore/QThread>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVirtualObject>

namespace vantoro::testing {

/// For answers that will come, however busy the machine.
constexpr std::chrono::seconds patience{60};

/// Proves that nothing waited for a missing answer, which takes 25 s by default; enough for
/// anything else on a busy machine.
constexpr std::chrono::seconds withoutWaiting{15};

/// A private session bus, used only by the test.
class PrivateBus {
public:
    PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;
    ~PrivateBus();

    /// A new connection, closed by the caller or with the bus. Throws if it fails.
    QDBusConnection connect(const QString& name) const;

    /// For programs that connect themselves.
    const QString& address() const { return address_; }

    /// Adds a service that the bus would start, leaving a trace. Call before it is requested.
    void addStartableService(const QString& name);
    bool startedAService() const;
    /// Stops the daemon; existing connections stay open but get no answers.
    void freeze() const;
    /// Ends the daemon, and with it all connections.
    void end() const;

private:
    /// The daemon's error output, which may be about irrelevant rights and limits.
    std::string complaints() const;

    QTemporaryDir folder_;
    std::FILE* output_ = nullptr; // the daemon's
    pid_t process_ = 0;
    QString address_;
};

/// A service that answers every call with the result of `answer`, on its own thread. A
/// default-constructed message means no answer.
class BusService {
public:
    using Answer = std::function<QDBusMessage(const QDBusMessage& question)>;

    BusService(const PrivateBus& bus, const QString& name, Answer answer);
    BusService(const BusService&) = delete;
    BusService& operator=(const BusService&) = delete;
    ~BusService();

private:
    class Object final : public QDBusVirtualObject {
    public:
        explicit Object(Answer answer) : answer_(std::move(answer)) {}

        QString introspect(const QString&) const override { return {}; }

        bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override;

    private:
        Answer answer_;
    };

    QString name_;
    Object object_;
    QThread thread_;
};

/// The answer of a portal backend to reading its lockdown property.
BusService::Answer lockdown(bool microphoneDisabled);
/// The answer of a permission store with this entry for an application.
BusService::Answer permissionStore(const QString& application, const QStringList& words);
QDBusMessage noAnswer(const QDBusMessage& question);

} // namespace vantoro::testing

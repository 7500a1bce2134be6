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

/// For answers that are sure to come, on however busy a machine.
constexpr std::chrono::seconds patience{60};

/// What takes less is not waiting for an answer that does not come: a call takes 25 s for that,
/// unless it is told otherwise. Far more than a busy machine takes for anything else.
constexpr std::chrono::seconds withoutWaiting{15};

/// A session bus of its own, which nothing but the test is on.
class PrivateBus {
public:
    PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;
    ~PrivateBus();

    /// A new connection; closed by whoever takes it, or with the bus. Throws without one.
    QDBusConnection connect(const QString& name) const;

    /// For programs that connect by themselves.
    const QString& address() const { return address_; }

    /// Lets the bus start a service, which would leave a mark. Before anybody asks for it.
    void addStartableService(const QString& name);
    bool startedAService() const;
    /// From then on it does nothing, and nobody's connection breaks.
    void freeze() const;

private:
    /// What the daemon complained of, which may be rights and limits that nothing depends on.
    std::string complaints() const;

    QTemporaryDir folder_;
    std::FILE* output_ = nullptr; // the daemon's
    pid_t process_ = 0;
    QString address_;
};

/// A service on a bus that answers every call with what `answer` makes of it, on a thread of its
/// own; a default-constructed message for no answer at all.
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

/// What a desktop backend of the portal answers to a reading of its property.
BusService::Answer lockdown(bool microphoneDisabled);
/// What a permission store answers that knows these words for an application.
BusService::Answer permissionStore(const QString& application, const QStringList& words);
QDBusMessage noAnswer(const QDBusMessage& question);

} // namespace vantoro::testing

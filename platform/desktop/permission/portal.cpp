// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/permission/portal.h"

#include <algorithm>
#include <vector>

#include <QtCore/QDeadlineTimer>
#include <QtCore/QMap>
#include <QtCore/QStringList>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVariant>

namespace vantoro::desktop {

namespace {

constexpr const char* permissionStore = "org.freedesktop.impl.portal.PermissionStore";

/// The reply, whatever it is, or an error once the deadline has passed.
QDBusMessage ask(const QDBusConnection& bus, const QDBusMessage& question,
                 const QDeadlineTimer& deadline) {
    // A limit of zero would be taken as the bus's own, of many seconds.
    const auto limit = std::max<qint64>(deadline.remainingTime(), 1);
    return bus.call(question, QDBus::Block, static_cast<int>(limit));
}

QStringList runningServices(const QDBusConnection& bus, const QDeadlineTimer& deadline) {
    const auto reply =
        ask(bus,
            QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                           "org.freedesktop.DBus", "ListNames"),
            deadline);
    return reply.type() == QDBusMessage::ReplyMessage ? reply.arguments().value(0).toStringList()
                                                      : QStringList();
}

bool lockdownDisablesMicrophone(const QDBusConnection& bus, const QString& service,
                                const QDeadlineTimer& deadline) {
    auto question = QDBusMessage::createMethodCall(service, "/org/freedesktop/portal/desktop",
                                                   "org.freedesktop.DBus.Properties", "Get");
    question << QString("org.freedesktop.impl.portal.Lockdown") << QString("disable-microphone");
    question.setAutoStartService(false);
    const auto reply = ask(bus, question, deadline);
    return reply.type() == QDBusMessage::ReplyMessage &&
           reply.arguments().value(0).value<QDBusVariant>().variant().toBool();
}

} // namespace

bool microphoneDisabledByPortal(const QDBusConnection& bus, std::chrono::milliseconds limit) {
    const QDeadlineTimer deadline(limit);
    const auto services = runningServices(bus, deadline);
    return std::ranges::any_of(services, [&](const QString& service) {
        return service.startsWith("org.freedesktop.impl.portal.desktop.") &&
               lockdownDisablesMicrophone(bus, service, deadline);
    });
}

StoredPermission storedMicrophonePermission(const QDBusConnection& bus,
                                            const std::string& applicationID,
                                            std::chrono::milliseconds limit) {
    auto question = QDBusMessage::createMethodCall(
        permissionStore, "/org/freedesktop/impl/portal/PermissionStore", permissionStore, "Lookup");
    question << QString("devices") << QString("microphone");
    const auto reply = ask(bus, question, QDeadlineTimer(limit));
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != "a{sas}v") {
        return StoredPermission::undecided;
    }
    const auto wordsOfApplications =
        qdbus_cast<QMap<QString, QStringList>>(reply.arguments().constFirst());
    std::vector<std::string> words;
    for (const auto& word : wordsOfApplications.value(QString::fromStdString(applicationID))) {
        words.push_back(word.toStdString());
    }
    return storedPermission(words);
}

} // namespace vantoro::desktop

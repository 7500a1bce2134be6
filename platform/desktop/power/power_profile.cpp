// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/power/power_profile.h"

#include <chrono>
#include <future>
#include <memory>
#include <thread>

#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVariant>

#include "platform/desktop/bus/answering_bus.h"

namespace vantoro::desktop {

namespace {

constexpr int millisecondsToAnswer = 250;

QVariant propertyOf(const QDBusConnection& bus, const QString& service, const QString& path,
                    const QString& interface, const QString& property) {
    auto question =
        QDBusMessage::createMethodCall(service, path, "org.freedesktop.DBus.Properties", "Get");
    question << interface << property;
    question.setAutoStartService(false);
    const auto reply = bus.call(question, QDBus::Block, millisecondsToAnswer);
    return reply.type() == QDBusMessage::ReplyMessage
               ? reply.arguments().value(0).value<QDBusVariant>().variant()
               : QVariant();
}

/// The service has had two names.
bool savesPower(const QDBusConnection& bus, const QString& service, const QString& path) {
    return propertyOf(bus, service, path, service, "ActiveProfile").toString() == "power-saver";
}

} // namespace

bool isPowerSaved(const QDBusConnection& systemBus, const QDBusConnection& sessionBus) {
    return savesPower(systemBus, "net.hadess.PowerProfiles", "/net/hadess/PowerProfiles") ||
           savesPower(systemBus, "org.freedesktop.UPower.PowerProfiles",
                      "/org/freedesktop/UPower/PowerProfiles") ||
           // In a sandbox it alone can be asked.
           propertyOf(sessionBus, "org.freedesktop.portal.Desktop",
                      "/org/freedesktop/portal/desktop",
                      "org.freedesktop.portal.PowerProfileMonitor", "power-saver-enabled")
               .toBool();
}

bool isPowerSavedHere() {
    constexpr std::chrono::seconds limit(1);
    // On a thread that nobody waits for: a bus is asked whether it answers first.
    const auto answer = std::make_shared<std::promise<bool>>();
    auto answered = answer->get_future();
    std::thread([answer] {
        answer->set_value(isPowerSaved(answeringSystemBus(), answeringSessionBus()));
    }).detach();
    return answered.wait_for(limit) != std::future_status::ready || answered.get();
}

} // namespace vantoro::desktop

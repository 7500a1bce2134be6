// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/bus/answering_bus.h"

#include <optional>

#include "platform/desktop/bus/silence.h"
#include "platform/desktop/bus/silent_buses.h"

namespace vantoro::desktop {

namespace {

/// Never destroyed: a thread that nobody waits for may ask while the program ends.
template <class Tag>
Silence& silence() {
    static auto* const kept = new Silence;
    return *kept;
}

bool isSilent(const BusAddresses& address) {
    return findSilentBuses({.addresses = address, .accessibility = std::nullopt}) != SilentBuses();
}

QDBusConnection unconnected() {
    return QDBusConnection(QStringLiteral("a bus that does not answer"));
}

} // namespace

QDBusConnection answeringSessionBus() {
    struct Session;
    const BusAddresses address{.system = {}, .session = standardBusAddresses().session};
    const auto ask = [&] { return isSilent(address); };
    return silence<Session>().isSilent(ask) ? unconnected() : QDBusConnection::sessionBus();
}

QDBusConnection answeringSystemBus() {
    struct System;
    const BusAddresses address{.system = standardBusAddresses().system, .session = {}};
    const auto ask = [&] { return isSilent(address); };
    return silence<System>().isSilent(ask) ? unconnected() : QDBusConnection::systemBus();
}

} // namespace vantoro::desktop

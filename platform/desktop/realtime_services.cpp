// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/realtime_services.h"

#include <array>
#include <string>

#include "platform/desktop/bus/asked_bus.h"
#include "platform/desktop/bus/asked_service.h"
#include "platform/desktop/bus/silence.h"

namespace vantoro::desktop {

namespace {

BusMethod gettingOf(const std::string& service, const std::string& path) {
    return {.service = service,
            .path = path,
            .interface = "org.freedesktop.DBus.Properties",
            .member = "Get"};
}

} // namespace

bool realtimeServicesAnswer(const BusAddresses& addresses, std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    AskedService portal(
        gettingOf("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop"),
        {"org.freedesktop.portal.Realtime", "version"});
    AskedService realtimeKit(
        gettingOf("org.freedesktop.RealtimeKit1", "/org/freedesktop/RealtimeKit1"),
        {"org.freedesktop.RealtimeKit1", "MaxRealtimePriority"});
    AskedBus session(addresses.session, busIdentifier(), [&](AskedBus& bus) { portal.begin(bus); });
    AskedBus system(addresses.system, busIdentifier(),
                    [&](AskedBus& bus) { realtimeKit.begin(bus); });
    const std::array<AskedBus*, 2> buses{&session, &system};
    const auto areSettled = [&] {
        return (portal.isSettled() || session.isGone()) &&
               (realtimeKit.isSettled() || system.isGone());
    };
    while (!areSettled() && std::chrono::steady_clock::now() < deadline) {
        awaitBuses(buses, deadline);
    }
    return areSettled();
}

bool realtimeServicesAnswerHere() {
    // Never destroyed: a thread that nobody waits for may ask while the program ends.
    static auto* const kept = new Silence;
    return !kept->isSilent([] { return !realtimeServicesAnswer(standardBusAddresses()); });
}

} // namespace vantoro::desktop

// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/power/power_profile.h"

#include <array>
#include <chrono>

#include "platform/desktop/bus/polled_bus.h"

namespace vantoro::desktop {

namespace {

constexpr std::chrono::seconds timeToAnswer(1);

} // namespace

bool isPowerSaved(const BusAddresses& buses) {
    bool isSaved = false;
    const auto askForProfile = [&](PolledBus& bus, const char* service, const char* path) {
        bus.ask(propertyReading(service, path), {service, "ActiveProfile"}, [&](BusMessage& reply) {
            isSaved = isSaved || reply.readTextInVariant() == "power-saver";
        });
    };
    PolledBus system(buses.system, [&](PolledBus& bus) { // the service has had two names
        askForProfile(bus, "net.hadess.PowerProfiles", "/net/hadess/PowerProfiles");
        askForProfile(bus, "org.freedesktop.UPower.PowerProfiles",
                      "/org/freedesktop/UPower/PowerProfiles");
    });
    PolledBus session(buses.session, [&](PolledBus& bus) { // a sandbox can only ask the portal
        bus.ask(
            propertyReading("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop"),
            {"org.freedesktop.portal.PowerProfileMonitor", "power-saver-enabled"},
            [&](BusMessage& reply) {
                isSaved = isSaved || reply.readFlagInVariant().value_or(false);
            });
    });
    awaitAnswers(std::array{&system, &session}, timeToAnswer);
    return isSaved || !system.isSettled() || !session.isSettled();
}

} // namespace vantoro::desktop

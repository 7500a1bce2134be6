// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/realtime_services.h"

#include <array>

#include "platform/desktop/bus/asked_bus.h"
#include "platform/desktop/bus/silence.h"

namespace vantoro::desktop {

bool realtimeServicesAnswer(const BusAddresses& addresses, std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    const auto any = [](BusMessage& /*reply*/) {};
    AskedBus session(addresses.session, [&](AskedBus& bus) {
        bus.ask(
            propertyReading("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop"),
            {"org.freedesktop.portal.Realtime", "version"}, any);
    });
    AskedBus system(addresses.system, [&](AskedBus& bus) {
        bus.ask(propertyReading("org.freedesktop.RealtimeKit1", "/org/freedesktop/RealtimeKit1"),
                {"org.freedesktop.RealtimeKit1", "MaxRealtimePriority"}, any);
    });
    awaitAnswers(std::array{&session, &system}, deadline);
    return session.areAllAnswered() && system.areAllAnswered();
}

bool realtimeServicesAnswerHere() {
    // Never destroyed: a detached thread may use it while the program ends.
    static auto* const kept = new Silence;
    return !kept->isSilent([] { return !realtimeServicesAnswer(standardBusAddresses()); });
}

} // namespace vantoro::desktop

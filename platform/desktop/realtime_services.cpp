// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/realtime_services.h"

#include <array>

#include "platform/desktop/bus/polled_bus.h"

namespace vantoro::desktop {

bool realtimeServicesAnswer(const BusAddresses& addresses, std::chrono::milliseconds limit) {
    const auto any = [](BusMessage& /*reply*/) {};
    PolledBus session(addresses.session, [&](PolledBus& bus) {
        bus.ask(
            propertyReading("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop"),
            {"org.freedesktop.portal.Realtime", "version"}, any);
    });
    PolledBus system(addresses.system, [&](PolledBus& bus) {
        bus.ask(propertyReading("org.freedesktop.RealtimeKit1", "/org/freedesktop/RealtimeKit1"),
                {"org.freedesktop.RealtimeKit1", "MaxRealtimePriority"}, any);
    });
    awaitAnswers(std::array{&session, &system}, limit);
    return session.areAllAnswered() && system.areAllAnswered();
}

bool Silence::isSilent(const std::function<bool()>& ask) {
    using Clock = std::chrono::steady_clock;
    const std::lock_guard lock(mutex_);
    if (until_ && Clock::now() < *until_) {
        return true;
    }
    const bool isSilent = ask();
    until_ = isSilent ? std::optional(Clock::now() + std::chrono::minutes(1)) : std::nullopt;
    return isSilent;
}

bool realtimeServicesAnswerHere() {
    // Never destroyed: a detached thread may use it while the program ends.
    static auto* const kept = new Silence;
    return !kept->isSilent([] { return !realtimeServicesAnswer(standardBusAddresses()); });
}

} // namespace vantoro::desktop

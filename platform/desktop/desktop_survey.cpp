// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/desktop_survey.h"

#include <array>
#include <optional>

#include "platform/desktop/bus/polled_bus.h"
#include "platform/desktop/power/logind.h"
#include "platform/desktop/status_area/status_notifier_area.h"
#include "platform/desktop/status_area/status_notifier_item.h"

namespace vantoro::desktop {

namespace {

Presence presence(bool isThere) {
    return isThere ? Presence::present : Presence::absent;
}

void askForStatusArea(PolledBus& session, DesktopSurvey& found) {
    session.ask(busMethod("NameHasOwner"), {statusNotifierWatcher}, [&](BusMessage& reply) {
        if (!reply.readFlag().value_or(false)) {
            found.statusArea = Presence::absent;
            return;
        }
        session.ask(panelReading(statusNotifierWatcher), panelProperty(),
                    [&](BusMessage& answer) { found.statusArea = presence(mayHavePanel(answer)); });
    });
}

/// A portal offers only what its desktop backend supports. This starts it if possible.
void askForPortal(PolledBus& session, DesktopSurvey& found) {
    auto question =
        propertyReading("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop");
    question.startsService = true;
    session.ask(question, {"org.freedesktop.portal.Inhibit", "version"},
                [&](BusMessage& reply) { found.portal = presence(!reply.isError()); });
}

void askToDelaySleep(PolledBus& system, DesktopSurvey& found) {
    system.ask(busMethod("GetNameOwner"), {loginManagerService}, [&](BusMessage& reply) {
        const auto owner = reply.isError() ? std::nullopt : reply.readText();
        if (!owner) {
            found.sleepDelay = SleepDelay::noLoginManager;
            return;
        }
        system.ask(inhibition(*owner), {"sleep", "Vantoro", "Recording", "delay"},
                   [&](BusMessage& answer) {
                       const bool isGranted = !answer.isError() && answer.readFile().has_value();
                       found.sleepDelay = isGranted ? SleepDelay::granted : SleepDelay::refused;
                   });
    });
}

} // namespace

DesktopSurvey surveyDesktop(const BusAddresses& buses, std::chrono::milliseconds limit) {
    DesktopSurvey found;
    PolledBus session(buses.session, [&found](PolledBus& bus) {
        askForStatusArea(bus, found);
        askForPortal(bus, found);
    });
    PolledBus system(buses.system, [&found](PolledBus& bus) { askToDelaySleep(bus, found); });
    awaitAnswers(std::array{&session, &system}, limit);
    if (session.isGone()) {
        found.statusArea = found.portal = Presence::absent;
    }
    if (session.isSettled()) {
        found.sessionBus = presence(!session.isGone());
    }
    if (system.isGone()) {
        found.sleepDelay = SleepDelay::noLoginManager;
    }
    return found;
}

} // namespace vantoro::desktop

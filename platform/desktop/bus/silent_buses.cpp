// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/bus/silent_buses.h"

#include <array>
#include <cstdint>

#include <QtCore/QByteArray>
#include <QtCore/QtGlobal>

#include "platform/desktop/bus/asked_bus.h"

namespace vantoro::desktop {

namespace {

using Clock = std::chrono::steady_clock;

/// Not a valid kind of address: connecting fails at once, without a search for another bus.
constexpr const char* noBus = "disabled:";

/// All questions, on their connections.
class Inquiry {
public:
    explicit Inquiry(const BusQuestions& questions)
        : hasWindow_(questions.accessibility.has_value()),
          accessibility_(questions.accessibility.value_or(AccessibilitySettings())),
          system_(questions.addresses.system),
          session_(questions.addresses.session, [this](AskedBus& session) {
              if (hasWindow_) {
                  accessibility_.begin(session);
                  askMenuRegistrar(session);
              }
          }) {
        if (!hasWindow_) {
            accessibility_.endWithSession();
        }
    }

    SilentBuses unsettled() {
        if (session_.isGone()) {
            accessibility_.endWithSession();
        }
        return {.system = !system_.isSettled(),
                .session = !session_.isSettled(),
                .accessibility = !accessibility_.isSettled(),
                .menuRegistrar = hasWindow_ && !session_.isGone() && !hasMenuRegistrarAnswered_};
    }

    /// False if interrupted.
    bool await(Clock::time_point deadline, int interruption) {
        const std::array<AskedBus*, 3> buses{&system_, &session_, accessibility_.bus()};
        return awaitBuses(buses, deadline, interruption);
    }

private:
    /// Any answer counts, even an error because the service is missing.
    void askMenuRegistrar(AskedBus& session) {
        hasMenuRegistrarAnswered_ = !session.ask({.service = "com.canonical.AppMenu.Registrar",
                                                  .path = "/com/canonical/AppMenu/Registrar",
                                                  .interface = "com.canonical.AppMenu.Registrar",
                                                  .member = "GetMenuForWindow",
                                                  .startsService = false},
                                                 {std::uint32_t(0)}, [this](BusMessage& /*reply*/) {
                                                     hasMenuRegistrarAnswered_ = true;
                                                 });
    }

    bool hasWindow_;
    bool hasMenuRegistrarAnswered_ = false;
    AccessibilityQuestions accessibility_;
    AskedBus system_;
    AskedBus session_;
};

/// Reports a silent bus without the services on it.
void leaveOutServicesOf(SilentBuses& silent, const BusQuestions& questions) {
    if (silent.session) {
        silent.menuRegistrar = false;
        silent.accessibility = silent.accessibility && !questions.accessibility->address.empty();
    }
}

} // namespace

SilentBuses findSilentBuses(const BusQuestions& questions) {
    const auto deadline = Clock::now() + questions.limit;
    Inquiry inquiry(questions);
    auto silent = inquiry.unsettled();
    while (silent != SilentBuses() && Clock::now() < deadline &&
           inquiry.await(deadline, questions.interruption)) {
        silent = inquiry.unsettled();
    }
    leaveOutServicesOf(silent, questions);
    return silent;
}

SilentBuses leaveOutSilentBuses(BusUsers users, int interruption) {
    BusQuestions questions{.addresses = standardBusAddresses(),
                           .accessibility = std::nullopt,
                           .interruption = interruption};
    if (users == BusUsers::soundAndWindow) {
        questions.accessibility = {
            .address = qgetenv("AT_SPI_BUS_ADDRESS").toStdString(),
            .isAlwaysOn = qEnvironmentVariableIsSet("QT_LINUX_ACCESSIBILITY_ALWAYS_ON")};
    }
    const auto silent = findSilentBuses(questions);
    const auto leaveOut = [](bool isSilent, const char* variable) {
        if (isSilent) {
            qputenv(variable, noBus);
        }
    };
    leaveOut(silent.system, "DBUS_SYSTEM_BUS_ADDRESS");
    leaveOut(silent.session, "DBUS_SESSION_BUS_ADDRESS");
    leaveOut(silent.accessibility, "AT_SPI_BUS_ADDRESS");
    return silent;
}

} // namespace vantoro::desktop

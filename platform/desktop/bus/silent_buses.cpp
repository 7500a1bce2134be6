// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/bus/silent_buses.h"

#include <array>
#include <cstdint>

#include <QtCore/QByteArray>
#include <QtCore/QtGlobal>

#include "platform/desktop/bus/polled_bus.h"

namespace vantoro::desktop {

namespace {

using Clock = std::chrono::steady_clock;

/// Not a valid kind of address: connecting fails at once, without a search for another bus.
constexpr const char* noBus = "disabled:";

constexpr const char* accessibilityService = "org.a11y.Bus";
constexpr const char* accessibilityPath = "/org/a11y/bus";

/// All questions, on their connections. With a window also what the toolkit asks before its first
/// one, where it waits half a minute for each answer: whether accessibility is wanted, where its
/// bus is, and whether the registry there answers; and the owner of the global menu.
class Inquiry {
public:
    explicit Inquiry(const BusQuestions& questions)
        : settings_(questions.accessibility),
          system_(questions.addresses.system),
          session_(questions.addresses.session, [this](PolledBus& session) {
              if (settings_) {
                  askAboutAccessibility(session);
                  askMenuRegistrar(session);
              }
          }) {
        if (settings_ && !settings_->address.empty()) {
            askAccessibilityBus(settings_->address);
        }
    }

    SilentBuses unsettled() const {
        const bool isAccessible = accessibility_ || !(hasNoAccessibility_ || session_.isGone());
        return {.system = !system_.isSettled(),
                .session = !session_.isSettled(),
                .accessibility = settings_ && isAccessible &&
                                 !(accessibility_ && accessibility_->areAllAnswered()),
                .menuRegistrar = settings_ && !session_.isGone() && !hasMenuRegistrarAnswered_};
    }

    /// False if interrupted.
    bool await(Clock::time_point deadline, int interruption) {
        const std::array<PolledBus*, 3> buses{&system_, &session_,
                                              accessibility_ ? &*accessibility_ : nullptr};
        return awaitBuses(buses, deadline, interruption);
    }

private:
    void askAboutAccessibility(PolledBus& session) {
        if (!settings_->address.empty()) {
            return;
        }
        if (settings_->isAlwaysOn) {
            askForAccessibilityBus(session);
        } else {
            askWhetherWanted(session);
        }
    }

    /// Services answer calls in order: the last answer implies the others.
    void askWhetherWanted(PolledBus& session) {
        const std::string status = "org.a11y.Status";
        const auto isWanted = [](BusMessage& reply) {
            return !reply.isError() && reply.readFlagInVariant().value_or(false);
        };
        const auto reading = propertyReading(accessibilityService, accessibilityPath);
        const bool isSent =
            session.ask(reading, {status, "ScreenReaderEnabled"},
                        [this, isWanted](BusMessage& reply) { hasReader_ = isWanted(reply); }) &&
            session.ask(reading, {status, "IsEnabled"},
                        [this, &session, isWanted](BusMessage& reply) {
                            if (isWanted(reply) || hasReader_) {
                                askForAccessibilityBus(session);
                            } else {
                                hasNoAccessibility_ = true;
                            }
                        });
        hasNoAccessibility_ = hasNoAccessibility_ || !isSent;
    }

    void askForAccessibilityBus(PolledBus& session) {
        const bool isSent = session.ask({.service = accessibilityService,
                                         .path = accessibilityPath,
                                         .interface = accessibilityService,
                                         .member = "GetAddress",
                                         .startsService = false},
                                        {}, [this](BusMessage& reply) {
                                            const auto address =
                                                reply.isError() ? std::nullopt : reply.readText();
                                            if (address) {
                                                askAccessibilityBus(*address);
                                            } else {
                                                hasNoAccessibility_ = true;
                                            }
                                        });
        hasNoAccessibility_ = hasNoAccessibility_ || !isSent;
    }

    /// The toolkit asks the registry the same.
    void askAccessibilityBus(const std::string& address) {
        accessibility_.emplace(address, [](PolledBus& bus) {
            bus.ask({.service = "org.a11y.atspi.Registry",
                     .path = "/org/a11y/atspi/registry",
                     .interface = "org.a11y.atspi.Registry",
                     .member = "GetRegisteredEvents"},
                    {}, [](BusMessage& /*reply*/) {});
        });
    }

    /// Any answer counts, even an error because the service is missing.
    void askMenuRegistrar(PolledBus& session) {
        hasMenuRegistrarAnswered_ = !session.ask({.service = "com.canonical.AppMenu.Registrar",
                                                  .path = "/com/canonical/AppMenu/Registrar",
                                                  .interface = "com.canonical.AppMenu.Registrar",
                                                  .member = "GetMenuForWindow",
                                                  .startsService = false},
                                                 {std::uint32_t(0)}, [this](BusMessage& /*reply*/) {
                                                     hasMenuRegistrarAnswered_ = true;
                                                 });
    }

    std::optional<AccessibilitySettings> settings_; // with a window
    bool hasNoAccessibility_ = false;
    bool hasReader_ = false;
    bool hasMenuRegistrarAnswered_ = false;
    std::optional<PolledBus> accessibility_; // once its address is known
    PolledBus system_;
    PolledBus session_;
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

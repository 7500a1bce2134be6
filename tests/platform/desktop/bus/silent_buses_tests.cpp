// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/bus/silent_buses.h"

#include <string>
#include <vector>

#include <sys/eventfd.h>
#include <unistd.h>

#include <QtCore/QElapsedTimer>
#include <QtDBus/QDBusVariant>

#include <gtest/gtest.h>

#include "platform/desktop/bus/silent_buses.h"
#include "platform/desktop/realtime_services.h"
#include "tests/platform/desktop/bus/private_bus.h"
#include "tests/platform/desktop/bus/silent_bus.h"

namespace vantoro::testing {
namespace {

using desktop::BusQuestions;
using desktop::SilentBuses;
using namespace std::chrono_literals;

class SilentBusesTest : public ::testing::Test {
protected:
    static constexpr auto shortLimit = 200ms;
    PrivateBus bus;
    SilentBus silent;

    /// With a limit that every answer meets even on a busy machine, unless none is expected.
    BusQuestions questions(const std::string& system, const std::string& session,
                           std::chrono::milliseconds limit) const {
        return {.addresses = {.system = system, .session = session},
                .accessibility = std::nullopt,
                .limit = limit};
    }

    std::string address() const { return bus.address().toStdString(); }

    SilentBuses findAccessibility(const desktop::AccessibilitySettings& settings,
                                  std::chrono::milliseconds limit) const {
        auto asked = questions("", address(), limit);
        asked.accessibility = settings;
        return desktop::findSilentBuses(asked);
    }

    /// The service that knows the address of the accessibility bus.
    BusService::Answer accessibility(bool isWanted, const std::string& address) const {
        return [isWanted, address](const QDBusMessage& question) {
            return question.member() == "GetAddress"
                       ? question.createReply(QString::fromStdString(address))
                       : question.createReply(QVariant::fromValue(QDBusVariant(isWanted)));
        };
    }
};

TEST_F(SilentBusesTest, busesThatAnswerOrAreMissingAreNotSilent) {
    for (const std::string other : {"", "unix:path=/nowhere", "nonsense", "unix:path=/dev/null"}) {
        EXPECT_EQ(desktop::findSilentBuses(questions(address(), other, patience)), SilentBuses())
            << other;
    }
}

TEST_F(SilentBusesTest, busesThatDoNotAnswerAreNamed) {
    EXPECT_EQ(desktop::findSilentBuses(questions(silent.address(), address(), shortLimit)),
              (SilentBuses{.system = true}));
    EXPECT_EQ(desktop::findSilentBuses(questions(address(), silent.address(), shortLimit)),
              (SilentBuses{.session = true}));
}

TEST_F(SilentBusesTest, busThatFreezesIsSilent) {
    bus.freeze();
    EXPECT_EQ(desktop::findSilentBuses(questions("", address(), shortLimit)),
              (SilentBuses{.session = true}));
}

TEST_F(SilentBusesTest, interruptionEndsTheWait) {
    const int interruption = ::eventfd(1, EFD_CLOEXEC);
    auto asked = questions(silent.address(), "", patience);
    asked.interruption = interruption;
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(desktop::findSilentBuses(asked), (SilentBuses{.system = true}));
    EXPECT_LT(std::chrono::milliseconds(timer.elapsed()), withoutWaiting);
    ::close(interruption);
}

TEST_F(SilentBusesTest, accessibilityBusIsAskedWhereItIsWanted) {
    const BusService service(bus, "org.a11y.Bus", accessibility(true, silent.address()));
    EXPECT_EQ(findAccessibility({}, shortLimit * 5), (SilentBuses{.accessibility = true}));
}

TEST_F(SilentBusesTest, accessibilityBusIsNotAskedWhereItIsNotWanted) {
    const BusService service(bus, "org.a11y.Bus", accessibility(false, silent.address()));
    EXPECT_EQ(findAccessibility({}, patience), SilentBuses());
    EXPECT_FALSE(silent.isConnectedTo());
    EXPECT_EQ(findAccessibility({.address = {}, .isAlwaysOn = true}, shortLimit * 5),
              (SilentBuses{.accessibility = true}));
}

TEST_F(SilentBusesTest, accessibilityBusOfTheEnvironmentIsAsked) {
    EXPECT_EQ(findAccessibility({.address = silent.address()}, shortLimit),
              (SilentBuses{.accessibility = true}));
    EXPECT_EQ(findAccessibility({.address = "unix:path=/nowhere"}, patience), SilentBuses());
}

TEST_F(SilentBusesTest, registryThatDoesNotAnswerIsASilentAccessibilityBus) {
    const BusService registry(bus, "org.a11y.atspi.Registry", noAnswer);
    EXPECT_EQ(findAccessibility({.address = address()}, shortLimit * 5),
              (SilentBuses{.accessibility = true}));
}

TEST_F(SilentBusesTest, accessibilityServiceThatDoesNotAnswerIsASilentAccessibilityBus) {
    const BusService service(bus, "org.a11y.Bus", noAnswer);
    EXPECT_EQ(findAccessibility({}, shortLimit * 5), (SilentBuses{.accessibility = true}));
}

TEST_F(SilentBusesTest, menuRegistrarThatDoesNotAnswerIsNamed) {
    {
        const BusService registrar(bus, "com.canonical.AppMenu.Registrar", noAnswer);
        EXPECT_EQ(findAccessibility({}, shortLimit * 5), (SilentBuses{.menuRegistrar = true}));
        EXPECT_EQ(desktop::findSilentBuses(questions("", address(), patience)), SilentBuses());
    }
    const BusService registrar(bus, "com.canonical.AppMenu.Registrar", lockdown(false));
    EXPECT_EQ(findAccessibility({}, patience), SilentBuses());
}

TEST_F(SilentBusesTest, realtimeServicesThatAreNotThereAnswer) {
    EXPECT_TRUE(desktop::realtimeServicesAnswer({.system = address(), .session = ""}, patience));
    EXPECT_TRUE(desktop::realtimeServicesAnswer({.system = "", .session = address()}, patience));
}

TEST_F(SilentBusesTest, realtimeServiceThatHangsDoesNotAnswer) {
    for (const QString name : {"org.freedesktop.portal.Desktop", "org.freedesktop.RealtimeKit1"}) {
        const BusService service(bus, name, noAnswer);
        EXPECT_FALSE(desktop::realtimeServicesAnswer({.system = address(), .session = address()},
                                                     shortLimit))
            << name.toStdString();
    }
    EXPECT_FALSE(
        desktop::realtimeServicesAnswer({.system = silent.address(), .session = ""}, shortLimit));
}

TEST(SilenceTest, serviceThatDidNotAnswerIsNotAskedAgain) {
    desktop::Silence silence;
    int asked = 0;
    const auto answers = [&] {
        ++asked;
        return false;
    };
    const auto doesNot = [&] {
        ++asked;
        return true;
    };
    EXPECT_FALSE(silence.isSilent(answers));
    EXPECT_FALSE(silence.isSilent(answers));
    EXPECT_TRUE(silence.isSilent(doesNot));
    EXPECT_TRUE(silence.isSilent(answers));
    EXPECT_EQ(asked, 3);
}

} // namespace
} // namespace vantoro::testing

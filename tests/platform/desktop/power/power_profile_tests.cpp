// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/power/power_profile.h"

#include <chrono>

#include <QtCore/QElapsedTimer>
#include <QtDBus/QDBusError>
#include <QtDBus/QDBusVariant>

#include <gtest/gtest.h>

#include "tests/platform/desktop/bus/private_bus.h"
#include "tests/platform/desktop/bus/silent_bus.h"

namespace vantoro::testing {
namespace {

const QString profilesService = "net.hadess.PowerProfiles";
const QString laterProfilesService = "org.freedesktop.UPower.PowerProfiles";
const QString profilesPortal = "org.freedesktop.portal.Desktop";

/// The answers of a service with this one property.
BusService::Answer property(const QString& interface, const QString& name, const QVariant& value) {
    return [=](const QDBusMessage& question) {
        const bool isAsked =
            question.member() == "Get" && question.arguments() == QVariantList{interface, name};
        return isAsked ? question.createReply(QVariant::fromValue(QDBusVariant(value)))
                       : question.createErrorReply(QDBusError::UnknownProperty, "no such property");
    };
}

class PowerProfileTest : public ::testing::Test {
protected:
    PrivateBus systemBus;
    PrivateBus sessionBus;

    bool isSaved() const {
        return desktop::isPowerSaved({.system = systemBus.address().toStdString(),
                                      .session = sessionBus.address().toStdString()});
    }
};

TEST_F(PowerProfileTest, withoutAnyServicePowerIsNotSaved) {
    EXPECT_FALSE(isSaved());
}

TEST_F(PowerProfileTest, withoutABusPowerIsNotSaved) {
    EXPECT_FALSE(desktop::isPowerSaved({}));
    EXPECT_FALSE(desktop::isPowerSaved({.system = "unix:path=/no/bus", .session = ""}));
}

TEST_F(PowerProfileTest, isSavedInTheProfileForThatUnderEitherName) {
    for (const QString& name : {profilesService, laterProfilesService}) {
        const BusService profiles(systemBus, name,
                                  property(name, "ActiveProfile", QString("power-saver")));
        EXPECT_TRUE(isSaved()) << name.toStdString();
    }
}

TEST_F(PowerProfileTest, isNotSavedInAnotherProfile) {
    const BusService profiles(systemBus, profilesService,
                              property(profilesService, "ActiveProfile", QString("balanced")));
    EXPECT_FALSE(isSaved());
}

TEST_F(PowerProfileTest, isSavedWhereThePortalSaysSo) {
    const BusService profiles(
        sessionBus, profilesPortal,
        property("org.freedesktop.portal.PowerProfileMonitor", "power-saver-enabled", true));
    EXPECT_TRUE(isSaved());
}

TEST_F(PowerProfileTest, startsNoServiceForTheQuestion) {
    systemBus.addStartableService(profilesService);
    EXPECT_FALSE(isSaved());
    EXPECT_FALSE(systemBus.startedAService());
}

TEST_F(PowerProfileTest, doesNotWaitForAServiceThatDoesNotAnswer) {
    const BusService profiles(systemBus, profilesService, noAnswer);
    EXPECT_FALSE(isSaved());
}

TEST_F(PowerProfileTest, nobodyWaitsForABusThatHangs) {
    const SilentBus silent;
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(desktop::isPowerSaved({.system = silent.address(), .session = {}}));
    EXPECT_TRUE(desktop::isPowerSaved({.system = {}, .session = silent.address()}));
    EXPECT_LT(std::chrono::milliseconds(timer.elapsed()), withoutWaiting);
}

} // namespace
} // namespace vantoro::testing

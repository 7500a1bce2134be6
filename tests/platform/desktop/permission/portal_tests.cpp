// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/permission/portal.h"

#include <chrono>
#include <functional>
#include <string>

#include <QtCore/QElapsedTimer>
#include <QtDBus/QDBusError>

#include <gtest/gtest.h>

#include "tests/platform/desktop/bus/private_bus.h"
#include "tests/platform/desktop/bus/silent_bus.h"

namespace vantoro::testing {
namespace {

using desktop::StoredPermission;

const QString storeName = "org.freedesktop.impl.portal.PermissionStore";
const QString backendName = "org.freedesktop.impl.portal.desktop.";

class PortalTest : public ::testing::Test {
protected:
    PrivateBus privateBus;
    std::string bus = privateBus.address().toStdString();

    bool microphoneDisabled() const { return desktop::microphoneDisabledByPortal(bus, patience); }

    StoredPermission permissionOf(const std::string& application) const {
        return desktop::storedMicrophonePermission(bus, application, patience);
    }

    /// Whether it keeps to its default limit, with a margin.
    static bool isBounded(const std::function<void()>& question) {
        QElapsedTimer timer;
        timer.start();
        question();
        const std::chrono::milliseconds elapsed(timer.elapsed());
        return elapsed >= desktop::answerLimit / 2 && elapsed < withoutWaiting;
    }
};

TEST_F(PortalTest, withoutAnyServiceNothingIsSaid) {
    EXPECT_FALSE(microphoneDisabled());
    EXPECT_EQ(permissionOf("app"), StoredPermission::undecided);
}

TEST_F(PortalTest, withoutABusNothingIsSaid) {
    for (const std::string none : {"", "unix:path=/no/bus"}) {
        EXPECT_FALSE(desktop::microphoneDisabledByPortal(none));
        EXPECT_EQ(desktop::storedMicrophonePermission(none, "app"), StoredPermission::undecided);
    }
}

TEST_F(PortalTest, silentBusIsNotWaitedForLong) {
    const SilentBus silent;
    EXPECT_TRUE(
        isBounded([&] { EXPECT_FALSE(desktop::microphoneDisabledByPortal(silent.address())); }));
    EXPECT_TRUE(isBounded([&] {
        EXPECT_EQ(desktop::storedMicrophonePermission(silent.address(), "app"),
                  StoredPermission::undecided);
    }));
}

TEST_F(PortalTest, anyBackendMayDisableTheMicrophone) {
    const BusService first(privateBus, backendName + "gtk", lockdown(false));
    EXPECT_FALSE(microphoneDisabled());
    const BusService second(privateBus, backendName + "other", lockdown(true));
    EXPECT_TRUE(microphoneDisabled());
}

TEST_F(PortalTest, backendWithoutLockdownDisablesNothing) {
    const BusService backend(privateBus, backendName + "gtk", [](const QDBusMessage& question) {
        return question.createErrorReply(QDBusError::UnknownInterface, "no lockdown here");
    });
    EXPECT_FALSE(microphoneDisabled());
}

TEST_F(PortalTest, othersOnTheBusAreNotAsked) {
    const BusService other(privateBus, "org.example.desktop", lockdown(true));
    EXPECT_FALSE(microphoneDisabled());
}

TEST_F(PortalTest, backendIsNotStartedForTheQuestion) {
    privateBus.addStartableService(backendName + "gtk");
    EXPECT_FALSE(microphoneDisabled());
    EXPECT_FALSE(privateBus.startedAService());
}

TEST_F(PortalTest, silentBackendIsNotWaitedForLong) {
    const BusService backend(privateBus, backendName + "gtk", noAnswer);
    const BusService another(privateBus, backendName + "other", noAnswer);
    EXPECT_TRUE(isBounded([&] { EXPECT_FALSE(desktop::microphoneDisabledByPortal(bus)); }));
}

TEST_F(PortalTest, storeEntryOfThisApplicationCounts) {
    struct Case {
        QStringList words;
        StoredPermission expected;
    };

    for (const auto& [words, expected] :
         {Case{{"yes"}, StoredPermission::granted}, Case{{"no"}, StoredPermission::refused},
          Case{{"ask"}, StoredPermission::undecided}, Case{{}, StoredPermission::undecided}}) {
        const BusService store(privateBus, storeName, permissionStore("app", words));
        EXPECT_EQ(permissionOf("app"), expected);
        EXPECT_EQ(permissionOf("another"), StoredPermission::undecided);
    }
}

TEST_F(PortalTest, storeWithoutTheEntryIsUndecided) {
    const BusService store(privateBus, storeName, [](const QDBusMessage& question) {
        return question.createErrorReply("org.freedesktop.portal.Error.NotFound", "no entry");
    });
    EXPECT_EQ(permissionOf("app"), StoredPermission::undecided);
}

TEST_F(PortalTest, storeAnswerOfAnotherTypeIsUndecided) {
    for (const QVariantList& answer : {QVariantList{}, QVariantList{"yes"}}) {
        const BusService store(privateBus, storeName, [=](const QDBusMessage& question) {
            return question.createReply(answer);
        });
        EXPECT_EQ(permissionOf("app"), StoredPermission::undecided);
    }
}

TEST_F(PortalTest, silentStoreIsNotWaitedForLong) {
    const BusService store(privateBus, storeName, noAnswer);
    EXPECT_TRUE(isBounded([&] {
        EXPECT_EQ(desktop::storedMicrophonePermission(bus, "app"), StoredPermission::undecided);
    }));
}

} // namespace
} // namespace vantoro::testing

#include "platform/desktop/portal.h"

#include <chrono>

#include <QtCore/QElapsedTimer>
#include <QtDBus/QDBusError>

#include <gtest/gtest.h>

#include "tests/platform/desktop/private_bus.h"

namespace vantoro::testing {
namespace {

using desktop::StoredPermission;

const QString storeName = "org.freedesktop.impl.portal.PermissionStore";
const QString backendName = "org.freedesktop.impl.portal.desktop.";

/// Generous for a busy machine, and far from the 25 s that a call takes unless told otherwise.
constexpr qint64 bounded = 10'000;

class PortalTest : public ::testing::Test {
protected:
    PrivateBus privateBus;
    QDBusConnection bus = privateBus.connect("asking");
    QElapsedTimer timer;

    void SetUp() override { timer.start(); }

    void TearDown() override {
        QDBusConnection::disconnectFromBus("asking");
        EXPECT_LT(timer.elapsed(), bounded);
    }
};

TEST_F(PortalTest, withoutAnyServiceNothingIsSaid) {
    EXPECT_FALSE(desktop::microphoneDisabledByPortal(bus));
    EXPECT_EQ(desktop::storedMicrophonePermission(bus, "app"), StoredPermission::undecided);
}

TEST_F(PortalTest, withoutABusNothingIsSaid) {
    const QDBusConnection none("never connected");
    EXPECT_FALSE(desktop::microphoneDisabledByPortal(none));
    EXPECT_EQ(desktop::storedMicrophonePermission(none, "app"), StoredPermission::undecided);
}

TEST_F(PortalTest, anyBackendMayDisableTheMicrophone) {
    const BusService first(privateBus, backendName + "gtk", lockdown(false));
    EXPECT_FALSE(desktop::microphoneDisabledByPortal(bus));
    const BusService second(privateBus, backendName + "other", lockdown(true));
    EXPECT_TRUE(desktop::microphoneDisabledByPortal(bus));
}

TEST_F(PortalTest, backendWithoutALockdownDisablesNothing) {
    const BusService backend(privateBus, backendName + "gtk", [](const QDBusMessage& question) {
        return question.createErrorReply(QDBusError::UnknownInterface, "no lockdown here");
    });
    EXPECT_FALSE(desktop::microphoneDisabledByPortal(bus));
}

TEST_F(PortalTest, othersOnTheBusAreNotAsked) {
    const BusService other(privateBus, "org.example.desktop", lockdown(true));
    EXPECT_FALSE(desktop::microphoneDisabledByPortal(bus));
}

TEST_F(PortalTest, backendIsNotStartedForTheQuestion) {
    privateBus.addStartableService(backendName + "gtk");
    EXPECT_FALSE(desktop::microphoneDisabledByPortal(bus));
    EXPECT_FALSE(privateBus.startedAService());
}

TEST_F(PortalTest, silentBackendIsNotWaitedForLong) {
    const BusService backend(privateBus, backendName + "gtk", noAnswer);
    const BusService another(privateBus, backendName + "other", noAnswer);
    EXPECT_FALSE(desktop::microphoneDisabledByPortal(bus));
    EXPECT_GE(timer.elapsed(), desktop::answerLimit.count() / 2); // it was asked
}

TEST_F(PortalTest, storesWordForOurApplicationCounts) {
    struct Case {
        QStringList words;
        StoredPermission expected;
    };

    for (const auto& [words, expected] :
         {Case{{"yes"}, StoredPermission::granted}, Case{{"no"}, StoredPermission::refused},
          Case{{"ask"}, StoredPermission::undecided}, Case{{}, StoredPermission::undecided}}) {
        const BusService store(privateBus, storeName, permissionStore("app", words));
        EXPECT_EQ(desktop::storedMicrophonePermission(bus, "app"), expected);
        EXPECT_EQ(desktop::storedMicrophonePermission(bus, "another"), StoredPermission::undecided);
    }
}

TEST_F(PortalTest, storeWithoutTheEntryIsUndecided) {
    const BusService store(privateBus, storeName, [](const QDBusMessage& question) {
        return question.createErrorReply("org.freedesktop.portal.Error.NotFound", "no entry");
    });
    EXPECT_EQ(desktop::storedMicrophonePermission(bus, "app"), StoredPermission::undecided);
}

TEST_F(PortalTest, storesAnswerOfAnotherShapeIsUndecided) {
    for (const QVariantList& answer : {QVariantList{}, QVariantList{"yes"}}) {
        const BusService store(privateBus, storeName, [=](const QDBusMessage& question) {
            return question.createReply(answer);
        });
        EXPECT_EQ(desktop::storedMicrophonePermission(bus, "app"), StoredPermission::undecided);
    }
}

TEST_F(PortalTest, silentStoreIsNotWaitedForLong) {
    const BusService store(privateBus, storeName, noAnswer);
    EXPECT_EQ(desktop::storedMicrophonePermission(bus, "app"), StoredPermission::undecided);
    EXPECT_GE(timer.elapsed(), desktop::answerLimit.count() / 2);
}

} // namespace
} // namespace vantoro::testing

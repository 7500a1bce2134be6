// SPDX-License-Identifier: GPL-3.0-or-later

#include <functional>
#include <memory>
#include <semaphore>

#include <QtCore/QObject>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusError>
#include <QtDBus/QDBusObjectPath>

#include <gtest/gtest.h>

#include "tests/control/event_loop.h"
#include "tests/platform/desktop/bus/silent_bus.h"
#include "tests/platform/desktop/power/mock_logind.h"
#include "tests/platform/desktop/power/power_fixture.h"

namespace vantoro::testing {
namespace {

const QString portalName = "org.freedesktop.portal.Desktop";
const QString handle = "/org/freedesktop/portal/desktop/request/1_1/t";

/// A call as "path interface.member arguments...".
QString told(const QDBusMessage& call) {
    QStringList words{call.path(), call.interface() + '.' + call.member(), call.signature()};
    for (const auto& argument : call.arguments()) {
        if (argument.canConvert<QDBusArgument>()) {
            const auto options = qdbus_cast<QVariantMap>(argument);
            for (auto option = options.begin(); option != options.end(); ++option) {
                words << option.key() + '=' + option->toString();
            }
        } else {
            words << '"' + argument.toString() + '"';
        }
    }
    return words.join(' ');
}

QDBusMessage granted(const QDBusMessage& call) {
    return call.member() == "Inhibit"
               ? call.createReply(QVariant::fromValue(QDBusObjectPath(handle)))
               : call.createReply();
}

QDBusMessage refused(const QDBusMessage& call) {
    return call.createErrorReply(QDBusError::AccessDenied, "no");
}

QDBusMessage grantedWithoutAHandle(const QDBusMessage& call) {
    return call.createReply("yes");
}

/// The desktop portal, or a stand-in.
class Portal {
public:
    Portal(const PrivateBus& bus, BusService::Answer answer)
        : service_(bus, portalName, [this, reply = std::move(answer)](const QDBusMessage& call) {
              QMetaObject::invokeMethod(
                  &mainThread_, [this, call] { calls << told(call); }, Qt::QueuedConnection);
              return reply(call);
          }) {}

    bool isEventuallyTold(const QStringList& expected) const {
        const bool told = EventLoop::runUntil([&] { return calls.size() >= expected.size(); });
        EXPECT_EQ(calls, expected);
        return told && calls == expected;
    }

    QStringList calls;

private:
    QObject mainThread_; // drops pending calls on destruction
    BusService service_;
};

class PortalInhibitionTest : public PowerManagementTest {
protected:
    MockLogind logind{systemBus};
    const QString inhibit =
        "/org/freedesktop/portal/desktop org.freedesktop.portal.Inhibit.Inhibit "
        R"(sua{sv} "" "4" reason=recording)";
    const QString close = handle + " org.freedesktop.portal.Request.Close ";
};

TEST_F(PortalInhibitionTest, portalIsAskedAloneAndTheRequestClosedAfterwards) {
    const Portal portal(sessionBus, granted);
    start();
    auto held = hold();
    EXPECT_TRUE(portal.isEventuallyTold({inhibit}));
    EXPECT_TRUE(logind.eventuallyHas(sleepOnly));
    held.reset();
    EXPECT_TRUE(portal.isEventuallyTold({inhibit, close}));
    EXPECT_TRUE(logind.eventuallyHas({}));
}

TEST_F(PortalInhibitionTest, loginManagerIsAskedWhereThePortalRefuses) {
    for (const auto& answer : {refused, grantedWithoutAHandle}) {
        const Portal portal(sessionBus, answer);
        start();
        auto held = hold();
        EXPECT_TRUE(logind.eventuallyHas(sleepAndIdle));
        held.reset();
        EXPECT_TRUE(logind.eventuallyHas({}));
        EXPECT_EQ(portal.calls, QStringList{inhibit}); // nothing to close
    }
}

/// What the portal says when its back end has answered, which takes longer than to grant.
void sayResponse(unsigned code) {
    auto response =
        QDBusMessage::createSignal(handle, "org.freedesktop.portal.Request", "Response");
    response.setArguments({code, QVariantMap()});
    QDBusConnection(portalName).send(response);
}

TEST_F(PortalInhibitionTest, loginManagerIsAskedWhereThePortalsBackEndRefuses) {
    const Portal portal(sessionBus, granted);
    start();
    auto held = hold();
    EXPECT_TRUE(portal.isEventuallyTold({inhibit}));
    EXPECT_TRUE(logind.eventuallyHas(sleepOnly));
    sayResponse(2);
    EXPECT_TRUE(logind.eventuallyHas(sleepAndIdle));
    held.reset();
    EXPECT_TRUE(logind.eventuallyHas({}));
    EXPECT_EQ(portal.calls, QStringList{inhibit}); // nothing to close
}

TEST_F(PortalInhibitionTest, loginManagerIsNotAskedWhereThePortalsBackEndAgrees) {
    const Portal portal(sessionBus, granted);
    start();
    auto held = hold();
    EXPECT_TRUE(portal.isEventuallyTold({inhibit}));
    sayResponse(0);
    held.reset();
    EXPECT_TRUE(portal.isEventuallyTold({inhibit, close}));
}

TEST_F(PortalInhibitionTest, loginManagerIsAskedWhereThePortalIsSilent) {
    const Portal portal(sessionBus, noAnswer);
    portalPatience = std::chrono::milliseconds(50);
    start();
    auto held = hold();
    EXPECT_TRUE(logind.eventuallyHas(sleepAndIdle));
    held.reset();
    EXPECT_TRUE(logind.eventuallyHas({}));
}

TEST_F(PortalInhibitionTest, loginManagerIsAskedWhereTheSessionBusIsSilent) {
    const SilentBus silent;
    portalPatience = std::chrono::milliseconds(50);
    start({.system = systemBus.address().toStdString(), .session = silent.address()});
    const auto held = hold();
    EXPECT_TRUE(logind.eventuallyHas(sleepAndIdle));
}

TEST_F(PortalInhibitionTest, portalThatEndsUnansweredCountsAsNone) {
    auto portal = std::make_unique<Portal>(sessionBus, noAnswer);
    start();
    const auto held = hold();
    EXPECT_TRUE(portal->isEventuallyTold({inhibit}));
    portal.reset();
    EXPECT_TRUE(logind.eventuallyHas(sleepAndIdle));
}

TEST_F(PortalInhibitionTest, sessionBusThatEndsUnansweredCountsAsNone) {
    auto session = std::make_unique<PrivateBus>();
    auto portal = std::make_unique<Portal>(*session, noAnswer);
    start(
        {.system = systemBus.address().toStdString(), .session = session->address().toStdString()});
    const auto held = hold();
    EXPECT_TRUE(portal->isEventuallyTold({inhibit}));
    session.reset();
    EXPECT_TRUE(logind.eventuallyHas(sleepAndIdle));
}

/// With a portal that answers on demand.
class SlowPortalTest : public PortalInhibitionTest {
protected:
    std::binary_semaphore mayAnswer{0};
    const Portal portal{sessionBus, [this](const QDBusMessage& call) {
                            if (call.member() == "Inhibit") {
                                mayAnswer.acquire();
                            }
                            return granted(call);
                        }};
};

TEST_F(SlowPortalTest, grantAfterTheEndIsReleasedAtOnce) {
    start();
    auto held = hold();
    EXPECT_TRUE(portal.isEventuallyTold({inhibit}));
    held.reset();
    mayAnswer.release();
    EXPECT_TRUE(portal.isEventuallyTold({inhibit, close}));
}

TEST_F(SlowPortalTest, lateGrantIsReleasedAtTheEnd) {
    portalPatience = std::chrono::milliseconds(50);
    start();
    auto held = hold();
    EXPECT_TRUE(logind.eventuallyHas(sleepAndIdle));
    mayAnswer.release();
    held.reset();
    EXPECT_TRUE(portal.isEventuallyTold({inhibit, close}));
    EXPECT_TRUE(logind.eventuallyHas({}));
}

TEST_F(SlowPortalTest, noFallbackAfterTheEnd) {
    portalPatience = std::chrono::milliseconds(50);
    start();
    auto held = hold();
    EXPECT_TRUE(portal.isEventuallyTold({inhibit}));
    held.reset();
    bool over = false;
    QTimer::singleShot(100, [&] { over = true; });
    EXPECT_TRUE(EventLoop::runUntil([&] { return over; }));
    EXPECT_TRUE(logind.eventuallyHas({}));
    mayAnswer.release();
}

} // namespace
} // namespace vantoro::testing

// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/notifications/desktop_notifications.h"

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include <QtCore/QElapsedTimer>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusError>

#include <gtest/gtest.h>

#include "platform/desktop/notifications/notification_calls.h"
#include "tests/control/event_loop.h"
#include "tests/platform/desktop/bus/private_bus.h"
#include "tests/platform/desktop/bus/silent_bus.h"

namespace vantoro::testing {
namespace {

using namespace std::chrono_literals;
using desktop::BusTexts;
using desktop::DesktopNotifications;

const Notification saved{.title = "Saved",
                         .text = "Tom & Jerry.m4a",
                         .clickLabel = "Open",
                         .actions = {{"play", "Play"}, {"reveal", "Show"}}};
const Notification ended{
    .title = "Ended", .text = "Why.", .clickLabel = "Open", .actions = {}, .isImportant = true};

/// A service, or a portal: answers as a real one and records the calls but for GetCapabilities.
class TestService {
public:
    TestService(const PrivateBus& bus, const QString& name,
                QStringList capabilities = {"actions", "body", "body-markup"})
        : name_(name), service_(bus, name, [this, capabilities](const QDBusMessage& call) {
              if (call.member() == "GetCapabilities") {
                  return call.createReply(capabilities);
              }
              QMetaObject::invokeMethod(
                  &mainThread_, [this, call] { calls.push_back(call); }, Qt::QueuedConnection);
              if (call.member() != "Notify") {
                  return call.createReply();
              }
              const auto replaced = call.arguments().value(1).toUInt();
              return call.createReply(replaced == 0 ? ++number_ : replaced);
          }) {}

    bool eventuallyHas(std::size_t count) const {
        return EventLoop::runUntil([&] { return calls.size() >= count; });
    }

    void tell(const QString& interface, const QString& signal, const QVariantList& arguments) {
        const QString path = interface == desktop::notificationService
                                 ? "/org/freedesktop/Notifications"
                                 : "/org/freedesktop/portal/desktop";
        auto message = QDBusMessage::createSignal(path, interface, signal);
        message.setArguments(arguments);
        QDBusConnection(name_).send(message);
    }

    void tell(const QString& signal, const QVariantList& arguments) {
        tell(desktop::notificationService, signal, arguments);
    }

    std::vector<QDBusMessage> calls;

private:
    QString name_;
    std::atomic<unsigned> number_ = 40;
    QObject mainThread_; // drops pending calls on destruction
    BusService service_;
};

class DesktopNotificationsTest : public ::testing::Test {
protected:
    PrivateBus bus;
    std::vector<std::tuple<std::string, std::string, std::string>> choices;
    std::optional<DesktopNotifications> notifications;

    void start(bool isSandboxed = false,
               std::chrono::milliseconds limit = DesktopNotifications::answerLimit) {
        notifications.emplace(bus.address().toStdString(), isSandboxed, limit);
        notifications->setChosen([this](const auto& topic, const auto& action, const auto& token) {
            choices.emplace_back(topic, action, token);
        });
    }

    bool eventuallyChosen(std::size_t count = 1) {
        return EventLoop::runUntil([&] { return choices.size() >= count; });
    }

    /// Runs what is pending: a service that is called again has answered the call before.
    void settle(TestService& service) {
        const auto calls = service.calls.size();
        for (const auto further : {1U, 2U}) {
            notifications->show("another", saved);
            EXPECT_TRUE(service.eventuallyHas(calls + further));
        }
        service.calls.resize(calls);
    }
};

TEST_F(DesktopNotificationsTest, serviceIsGivenEverything) {
    TestService service(bus, desktop::notificationService);
    start();
    notifications->show("topic", saved);
    ASSERT_TRUE(service.eventuallyHas(1));
    const auto& call = service.calls[0];
    EXPECT_EQ(call.signature(), "susssasa{sv}i");
    const auto arguments = call.arguments();
    EXPECT_EQ(arguments[0], "Vantoro");
    EXPECT_EQ(arguments[1], 0U);
    EXPECT_EQ(arguments[2], "com.vantoro.app");
    EXPECT_EQ(arguments[3], "Saved");
    EXPECT_EQ(arguments[4], "Tom &amp; Jerry.m4a");
    EXPECT_EQ(arguments[5].toStringList(),
              QStringList({"default", "Open", "play", "Play", "reveal", "Show"}));
    const auto hints = qdbus_cast<QVariantMap>(arguments[6]);
    EXPECT_EQ(hints["desktop-entry"], "com.vantoro.app");
    EXPECT_EQ(hints["urgency"].toInt(), 1);
    EXPECT_EQ(arguments[7], -1);
}

TEST_F(DesktopNotificationsTest, importantOneStays) {
    TestService service(bus, desktop::notificationService);
    start();
    notifications->show("topic", ended);
    ASSERT_TRUE(service.eventuallyHas(1));
    const auto arguments = service.calls[0].arguments();
    EXPECT_EQ(qdbus_cast<QVariantMap>(arguments[6])["urgency"].toInt(), 2);
    EXPECT_EQ(arguments[7], 0);
}

TEST_F(DesktopNotificationsTest, simpleServiceIsGivenNeitherMarkupNorButtons) {
    TestService service(bus, desktop::notificationService, {"body"});
    start();
    notifications->show("topic", saved);
    ASSERT_TRUE(service.eventuallyHas(1));
    EXPECT_EQ(service.calls[0].arguments()[4], "Tom & Jerry.m4a");
    EXPECT_EQ(service.calls[0].arguments()[5].toStringList(), QStringList());
}

TEST_F(DesktopNotificationsTest, buttonAndClickAreToldWithTheTokenOfTheirService) {
    TestService service(bus, desktop::notificationService);
    start();
    notifications->show("topic", saved);
    ASSERT_TRUE(service.eventuallyHas(1));
    settle(service);                              // by now it knows the number
    service.tell("ActionInvoked", {40U, "play"}); // another program's
    service.tell("ActivationToken", {41U, "token"});
    service.tell("ActionInvoked", {41U, "play"});
    service.tell("ActionInvoked", {41U, "default"});
    ASSERT_TRUE(eventuallyChosen(2));
    EXPECT_EQ(choices, (decltype(choices){{"topic", "play", "token"}, {"topic", "", ""}}));
}

TEST_F(DesktopNotificationsTest, strangerCannotChoose) {
    TestService service(bus, desktop::notificationService);
    TestService stranger(bus, "org.example.Stranger");
    start();
    notifications->show("topic", saved);
    ASSERT_TRUE(service.eventuallyHas(1));
    settle(service);
    stranger.tell("ActionInvoked", {41U, "play"});
    service.tell("ActionInvoked", {41U, "reveal"});
    ASSERT_TRUE(eventuallyChosen());
    EXPECT_EQ(std::get<1>(choices[0]), "reveal");
}

TEST_F(DesktopNotificationsTest, newerOneReplacesThatOfItsTopic) {
    TestService service(bus, desktop::notificationService);
    start();
    notifications->show("topic", saved);
    ASSERT_TRUE(service.eventuallyHas(1));
    settle(service);
    notifications->show("topic", ended);
    ASSERT_TRUE(service.eventuallyHas(2));
    EXPECT_EQ(service.calls[1].arguments()[1], 41U);
}

TEST_F(DesktopNotificationsTest, newerOneReplacesThatOfItsTopicBeforeItsNumberIsKnown) {
    TestService service(bus, desktop::notificationService);
    start();
    notifications->show("topic", saved);
    ASSERT_TRUE(service.eventuallyHas(1)); // may not have answered yet
    notifications->show("topic", ended);
    ASSERT_TRUE(service.eventuallyHas(2));
    EXPECT_EQ(service.calls[1].member(), "Notify");
    EXPECT_EQ(service.calls[1].arguments()[1], 41U);
}

TEST_F(DesktopNotificationsTest, withdrawnOneIsClosed) {
    TestService service(bus, desktop::notificationService);
    start();
    notifications->show("topic", saved);
    ASSERT_TRUE(service.eventuallyHas(1));
    settle(service);
    notifications->withdraw("topic");
    ASSERT_TRUE(service.eventuallyHas(2));
    EXPECT_EQ(service.calls[1].member(), "CloseNotification");
    EXPECT_EQ(service.calls[1].arguments(), QVariantList{41U});
    notifications->withdraw("topic");
    notifications->withdraw("never shown");
    settle(service);
    EXPECT_EQ(service.calls.size(), 2U);
}

TEST_F(DesktopNotificationsTest, oneThatIsWithdrawnAtOnceIsNotShown) {
    TestService service(bus, desktop::notificationService);
    start();
    notifications->show("topic", saved);
    notifications->withdraw("topic");
    settle(service);
    EXPECT_TRUE(service.calls.empty());
}

TEST_F(DesktopNotificationsTest, importantOneOutlivesARestartOfTheService) {
    std::optional<TestService> service(std::in_place, bus, desktop::notificationService);
    start();
    notifications->show("ended", ended);
    notifications->show("saved", saved);
    ASSERT_TRUE(service->eventuallyHas(2));
    settle(*service);
    service.reset();
    service.emplace(bus, desktop::notificationService);
    ASSERT_TRUE(service->eventuallyHas(1));
    EXPECT_EQ(service->calls[0].arguments()[1], 0U);
    EXPECT_EQ(service->calls[0].arguments()[3], "Ended");
    settle(*service);
    EXPECT_EQ(service->calls.size(), 1U);
}

TEST_F(DesktopNotificationsTest, importantOneThatWasReadIsNotShownAgain) {
    std::optional<TestService> service(std::in_place, bus, desktop::notificationService);
    start();
    notifications->show("ended", ended);
    ASSERT_TRUE(service->eventuallyHas(1));
    settle(*service);
    service->tell("NotificationClosed", {41U, 2U});
    service->tell("ActionInvoked", {42U, "default"}); // told after the closing
    ASSERT_TRUE(eventuallyChosen());
    service.reset();
    service.emplace(bus, desktop::notificationService);
    settle(*service);
    EXPECT_TRUE(service->calls.empty());
}

TEST_F(DesktopNotificationsTest, importantOneWaitsForAServiceThatComesLater) {
    start();
    notifications->show("ended", ended);
    notifications->show("saved", saved);
    TestService service(bus, desktop::notificationService);
    ASSERT_TRUE(service.eventuallyHas(1));
    EXPECT_EQ(service.calls[0].arguments()[3], "Ended");
}

TEST_F(DesktopNotificationsTest, portalIsAskedInASandboxAlone) {
    TestService service(bus, desktop::notificationService);
    TestService portal(bus, desktop::notificationPortal);
    start(true);
    notifications->show("topic", saved);
    ASSERT_TRUE(portal.eventuallyHas(1));
    const auto& call = portal.calls[0];
    EXPECT_EQ(call.member(), "AddNotification");
    EXPECT_EQ(call.signature(), "sa{sv}");
    EXPECT_EQ(call.arguments()[0], "topic");
    const auto given = qdbus_cast<QVariantMap>(call.arguments()[1]);
    EXPECT_EQ(given["title"], "Saved");
    EXPECT_EQ(given["body"], "Tom & Jerry.m4a");
    EXPECT_EQ(given["priority"], "normal");
    EXPECT_EQ(given["default-action"], "default");
    const auto buttons = qdbus_cast<QList<QVariantMap>>(given["buttons"]);
    ASSERT_EQ(buttons.size(), 2);
    EXPECT_EQ(buttons[1], QVariantMap({{"label", "Show"}, {"action", "reveal"}}));
    EXPECT_TRUE(service.calls.empty());
}

TEST_F(DesktopNotificationsTest, choiceInThePortalIsToldAndItsNotificationRemoved) {
    TestService portal(bus, desktop::notificationPortal);
    start(true);
    notifications->show("topic", saved);
    ASSERT_TRUE(portal.eventuallyHas(1));
    settle(portal);
    const QVariantList none;
    portal.tell(desktop::notificationPortalInterface, "ActionInvoked", {"other", "play", none});
    portal.tell(desktop::notificationPortalInterface, "ActionInvoked", {"topic", "play", none});
    ASSERT_TRUE(eventuallyChosen());
    EXPECT_EQ(choices, (decltype(choices){{"topic", "play", ""}}));
    notifications->withdraw("topic");
    ASSERT_TRUE(portal.eventuallyHas(2));
    EXPECT_EQ(portal.calls[1].member(), "RemoveNotification");
}

TEST_F(DesktopNotificationsTest, portalIsAskedWhereThereIsNoService) {
    TestService portal(bus, desktop::notificationPortal);
    start();
    notifications->show("topic", saved);
    EXPECT_TRUE(portal.eventuallyHas(1));
}

TEST_F(DesktopNotificationsTest, answerThatComesTooLateShowsOnlyWhatIsImportant) {
    TestService service(bus, desktop::notificationService);
    start(false, 0ms);
    notifications->show("saved", saved);
    notifications->show("ended", ended);
    ASSERT_TRUE(service.eventuallyHas(1));
    EXPECT_EQ(service.calls[0].arguments()[3], "Ended");
}

TEST(DesktopNotificationsAloneTest, connectsForTheFirst) {
    const SilentBus silent;
    DesktopNotifications notifications(silent.address(), false);
    notifications.withdraw("topic");
    EXPECT_FALSE(silent.isConnectedTo());
    notifications.show("topic", saved);
    EXPECT_TRUE(silent.isConnectedTo());
}

TEST(DesktopNotificationsAloneTest, keepsNobodyWaitingForABusThatHangs) {
    const SilentBus silent;
    QElapsedTimer timer;
    timer.start();
    {
        DesktopNotifications notifications(silent.address(), false);
        notifications.show("topic", ended);
        notifications.withdraw("topic");
        EXPECT_TRUE(silent.isConnectedTo());
    }
    EXPECT_LT(std::chrono::milliseconds(timer.elapsed()), withoutWaiting);
}

TEST(DesktopNotificationsAloneTest, doesNothingWithoutABus) {
    for (const bool isSandboxed : {false, true}) {
        DesktopNotifications notifications("", isSandboxed);
        notifications.show("topic", saved);
        notifications.withdraw("topic");
    }
}

} // namespace
} // namespace vantoro::testing

// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/instance/application_instance.h"

#include <chrono>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include <QtCore/QStringList>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusError>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCallWatcher>

#include <gtest/gtest.h>

#include "tests/control/event_loop.h"
#include "tests/platform/desktop/bus/private_bus.h"
#include "tests/platform/desktop/bus/silent_bus.h"

namespace vantoro::testing {
namespace {

using namespace std::chrono_literals;
using desktop::ApplicationInstance;
using Role = ApplicationInstance::Role;
using FirstAnswer = ApplicationInstance::FirstAnswer;
using enum desktop::ApplicationAction;

constexpr auto patience = 20s; // for what is immediate unless the machine is busy

Role roleOf(ApplicationInstance& instance, std::chrono::milliseconds limit = patience) {
    std::optional<Role> role;
    instance.whenRoleIsKnown(limit, [&](Role known) { role = known; });
    EXPECT_TRUE(EventLoop::runUntil([&] { return role.has_value(); }, 2 * patience));
    return role.value_or(Role::unknown);
}

/// What the first run answers when the instance asks it to show its window.
FirstAnswer answerOfFirst(ApplicationInstance& instance, const std::string& token,
                          std::chrono::milliseconds limit = patience) {
    std::optional<FirstAnswer> received;
    instance.activateFirst(token, limit, [&](FirstAnswer answer) { received = answer; });
    EXPECT_TRUE(EventLoop::runUntil([&] { return received.has_value(); }, 2 * patience));
    return received.value_or(FirstAnswer::none);
}

class ApplicationInstanceTest : public ::testing::Test {
protected:
    PrivateBus bus;
    std::string address = bus.address().toStdString();
    std::optional<ApplicationInstance> first{std::in_place, address};
    std::vector<std::string> tokens;                   ///< of each request to the first run
    std::vector<desktop::ApplicationRequest> requests; ///< all requests it received

    void listen() {
        ASSERT_EQ(roleOf(*first), Role::first);
        first->setRequested([this](const desktop::ApplicationRequest& request) {
            requests.push_back(request);
            if (!request.action) {
                tokens.push_back(request.activationToken);
            }
        });
    }

    bool isEventuallyWanted(std::size_t times = 1) {
        return EventLoop::runUntil([&] { return tokens.size() >= times; });
    }

    bool isEventuallyAskedFor(std::size_t things) {
        return EventLoop::runUntil([&] { return requests.size() >= things; });
    }

    /// Invokes the first run's action like the desktop; returns the error's name, empty if none.
    std::string errorOfAction(const QString& name, const QVariantMap& platformData = {}) {
        auto caller = bus.connect("caller");
        auto message = QDBusMessage::createMethodCall(
            "com.vantoro.app", "/com/vantoro/app", "org.freedesktop.Application", "ActivateAction");
        message.setArguments({name, QVariantList{1, "two"}, platformData});
        const QDBusPendingCallWatcher answer(caller.asyncCall(message));
        EXPECT_TRUE(EventLoop::runUntil([&] { return answer.isFinished(); }));
        const auto error = answer.error().name().toStdString();
        QDBusConnection::disconnectFromBus("caller");
        return error;
    }

    /// Calls the first run like the desktop.
    void call(const QString& method, const QVariantList& arguments) {
        auto caller = bus.connect("caller");
        auto message = QDBusMessage::createMethodCall("com.vantoro.app", "/com/vantoro/app",
                                                      "org.freedesktop.Application", method);
        message.setArguments(arguments);
        EXPECT_TRUE(caller.send(message));
        EXPECT_TRUE(isEventuallyWanted());
        QDBusConnection::disconnectFromBus("caller");
    }
};

TEST_F(ApplicationInstanceTest, onlyOneIsTheFirst) {
    EXPECT_EQ(roleOf(*first), Role::first);
    ApplicationInstance second(address);
    EXPECT_EQ(roleOf(second), Role::another);
}

TEST_F(ApplicationInstanceTest, afterTheFirstTheNextIsTheFirst) {
    EXPECT_EQ(roleOf(*first), Role::first);
    first.reset();
    ApplicationInstance next(address);
    EXPECT_EQ(roleOf(next), Role::first);
}

TEST_F(ApplicationInstanceTest, secondRunMakesTheFirstShowItsWindow) {
    listen();
    ApplicationInstance second(address);
    ASSERT_EQ(roleOf(second), Role::another);
    EXPECT_EQ(answerOfFirst(second, "the user's leave"), FirstAnswer::windowShown);
    EXPECT_TRUE(isEventuallyWanted());
    EXPECT_EQ(answerOfFirst(second, ""), FirstAnswer::windowShown);
    EXPECT_TRUE(isEventuallyWanted(2));
    EXPECT_EQ(tokens, std::vector<std::string>({"the user's leave", ""}));
}

TEST_F(ApplicationInstanceTest, earlyRequestIsDeliveredLater) {
    ASSERT_EQ(roleOf(*first), Role::first);
    ApplicationInstance second(address);
    EXPECT_EQ(answerOfFirst(second, "early"), FirstAnswer::windowShown);
    listen();
    EXPECT_TRUE(isEventuallyWanted());
    EXPECT_EQ(tokens, std::vector<std::string>({"early"}));
}

TEST_F(ApplicationInstanceTest, platformDataOfAnyKindIsAccepted) {
    listen();
    call("Activate",
         {QVariantMap{{"number", 1}, {"activation-token", "leave"}, {"other", "text"}}});
    EXPECT_EQ(tokens, std::vector<std::string>({"leave"}));
}

TEST_F(ApplicationInstanceTest, tokenOfOlderDesktopsIsAccepted) {
    listen();
    call("Activate", {QVariantMap{{"desktop-startup-id", "older"}}});
    EXPECT_EQ(tokens, std::vector<std::string>({"older"}));
}

TEST_F(ApplicationInstanceTest, newerTokenCountsWhicheverComesFirst) {
    listen();
    call("Activate", {QVariantMap{{"activation-token", "newer"}, {"desktop-startup-id", "older"}}});
    EXPECT_EQ(tokens, std::vector<std::string>({"newer"}));
}

TEST_F(ApplicationInstanceTest, tokenThatIsNotTextIsIgnored) {
    listen();
    call("Activate", {QVariantMap{{"activation-token", 7}}});
    EXPECT_EQ(tokens, std::vector<std::string>({""}));
}

TEST_F(ApplicationInstanceTest, openShowsTheWindow) {
    listen();
    call("Open", {QStringList{"file:///a.m4a"}, QVariantMap()});
    EXPECT_EQ(tokens, std::vector<std::string>({""}));
}

TEST_F(ApplicationInstanceTest, desktopStartsAndStopsRecordingsByTheirActions) {
    listen();
    EXPECT_EQ(errorOfAction("start-recording", {{"activation-token", "leave"}}), "");
    EXPECT_EQ(errorOfAction("stop-recording"), "");
    EXPECT_TRUE(isEventuallyAskedFor(2));
    EXPECT_EQ(requests, (std::vector<desktop::ApplicationRequest>{{startRecording, "leave"},
                                                                  {stopRecording, ""}}));
}

TEST_F(ApplicationInstanceTest, actionThatIsUnknownIsRefused) {
    listen();
    EXPECT_EQ(errorOfAction("start-dancing"), "org.freedesktop.DBus.Error.InvalidArgs");
    EXPECT_EQ(errorOfAction(""), "org.freedesktop.DBus.Error.InvalidArgs");
    EXPECT_EQ(errorOfAction("stop-recording"), "");
    EXPECT_TRUE(isEventuallyAskedFor(1));
    EXPECT_EQ(requests.size(), 1U);
}

TEST_F(ApplicationInstanceTest, earlyRequestsAreDeliveredInOrder) {
    ASSERT_EQ(roleOf(*first), Role::first);
    EXPECT_EQ(errorOfAction("start-recording"), "");
    ApplicationInstance second(address);
    EXPECT_EQ(answerOfFirst(second, "early"), FirstAnswer::windowShown);
    EXPECT_EQ(errorOfAction("stop-recording"), "");
    listen();
    EXPECT_TRUE(isEventuallyAskedFor(3));
    EXPECT_EQ(requests, (std::vector<desktop::ApplicationRequest>{
                            {startRecording, ""}, {std::nullopt, "early"}, {stopRecording, ""}}));
}

TEST(ApplicationInstanceBesideAnotherTest, firstThatDoesNotAnswerIsNotWaitedForLonger) {
    const PrivateBus bus;
    const BusService hanging(bus, desktop::applicationID, noAnswer);
    ApplicationInstance second(bus.address().toStdString());
    ASSERT_EQ(roleOf(second), Role::another);
    EXPECT_EQ(answerOfFirst(second, "", 300ms), FirstAnswer::none);
}

TEST(ApplicationInstanceBesideAnotherTest, firstThatRefusesHasNotEnded) {
    const PrivateBus bus;
    const BusService refusing(bus, desktop::applicationID, [](const QDBusMessage& question) {
        return question.createErrorReply(QDBusError::Failed, "no");
    });
    ApplicationInstance second(bus.address().toStdString());
    ASSERT_EQ(roleOf(second), Role::another);
    EXPECT_EQ(answerOfFirst(second, ""), FirstAnswer::none);
}

TEST_F(ApplicationInstanceTest, firstThatIsGoneHasEnded) {
    ASSERT_EQ(roleOf(*first), Role::first);
    ApplicationInstance second(address);
    ASSERT_EQ(roleOf(second), Role::another);
    first.reset();
    EXPECT_EQ(answerOfFirst(second, ""), FirstAnswer::hasEnded);
}

TEST_F(ApplicationInstanceTest, nobodyIsToldAfterItsEnd) {
    listen();
    ApplicationInstance second(address);
    EXPECT_EQ(answerOfFirst(second, ""),
              FirstAnswer::windowShown); // the first owns the name, and answers soon
    tokens.clear();
    first.reset();
    QCoreApplication::processEvents();
    EXPECT_TRUE(tokens.empty());
}

TEST(ApplicationInstanceWithoutABusTest, eachIsTheFirst) {
    for (const std::string address : {"", "unix:path=/nowhere/at/all"}) {
        ApplicationInstance one(address);
        EXPECT_EQ(roleOf(one), Role::first);
        EXPECT_EQ(answerOfFirst(one, ""), FirstAnswer::none);
    }
}

TEST(ApplicationInstanceWithoutABusTest, hangingBusIsNotWaitedForLonger) {
    const SilentBus silent;
    ApplicationInstance one(silent.address());
    EXPECT_EQ(roleOf(one, 300ms), Role::unknown);
}

TEST(ActivationTokenTest, isTheOneOfThisStart) {
    ::unsetenv("XDG_ACTIVATION_TOKEN");
    ::unsetenv("DESKTOP_STARTUP_ID");
    EXPECT_EQ(desktop::activationTokenOfThisStart(), "");
    ::setenv("DESKTOP_STARTUP_ID", "older", 1);
    EXPECT_EQ(desktop::activationTokenOfThisStart(), "older");
    ::setenv("XDG_ACTIVATION_TOKEN", "newer", 1);
    EXPECT_EQ(desktop::activationTokenOfThisStart(), "newer");
}

} // namespace
} // namespace vantoro::testing

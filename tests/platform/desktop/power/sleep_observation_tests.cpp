// SPDX-License-Identifier: GPL-3.0-or-later

#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <QtDBus/QDBusMessage>

#include "tests/control/event_loop.h"
#include "tests/platform/desktop/power/mock_logind.h"
#include "tests/platform/desktop/power/power_fixture.h"

namespace vantoro::testing {
namespace {

using Heard = std::vector<std::string>;

class SleepObservationTest : public PowerManagementTest {
protected:
    MockLogind logind{systemBus};
    Heard heard;

    void SetUp() override { start(); }

    std::unique_ptr<PowerObservation> observe(Heard& into) {
        return power->observe([&into] { into.emplace_back("sleep"); },
                              [&into] { into.emplace_back("wake"); });
    }

    /// Afterwards signals arrive: the bus has accepted the connection and answered.
    void awaitConnection() {
        const auto held = hold();
        ASSERT_TRUE(logind.eventuallyHas(sleepAndIdle));
    }

    /// Sends it to every connection, subscribed or not.
    void broadcast(const QString& path, const QString& interface, const QString& signal,
                   const QVariantList& arguments) {
        auto bus = systemBus.connect("an impostor");
        const auto names = bus.call(QDBusMessage::createMethodCall(
            "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ListNames"));
        for (const auto& name : names.arguments().constFirst().toStringList()) {
            auto message = QDBusMessage::createTargetedSignal(name, path, interface, signal);
            message.setArguments(arguments);
            EXPECT_TRUE(!name.startsWith(':') || bus.send(message));
        }
    }
};

TEST_F(SleepObservationTest, sleepAndWakeAreHeardOnceEachOnTheMainThread) {
    std::vector<std::thread::id> threads;
    const auto remember = [&](const char* event) {
        return [&, event] {
            heard.emplace_back(event);
            threads.push_back(std::this_thread::get_id());
        };
    };
    const auto observation = power->observe(remember("sleep"), remember("wake"));
    awaitConnection();
    logind.prepareForSleep(true);
    logind.prepareForSleep(false);
    logind.prepareForSleep(true);
    EXPECT_TRUE(EventLoop::runUntil([&] { return heard.size() >= 3; }));
    EXPECT_EQ(heard, (Heard{"sleep", "wake", "sleep"}));
    EXPECT_EQ(threads, std::vector(3, std::this_thread::get_id()));
}

TEST_F(SleepObservationTest, shutdownIsHeardAsASleepWithoutAWake) {
    const auto observation = observe(heard);
    awaitConnection();
    logind.prepareForShutdown(true);
    logind.prepareForShutdown(false);
    logind.prepareForSleep(false);
    EXPECT_TRUE(EventLoop::runUntil([&] { return heard.size() >= 2; }));
    EXPECT_EQ(heard, (Heard{"sleep", "wake"}));
}

TEST_F(SleepObservationTest, eachObserverHearsUntilItsEnd) {
    Heard early;
    auto first = observe(early);
    const auto second = observe(heard);
    awaitConnection();
    logind.prepareForSleep(true);
    EXPECT_TRUE(EventLoop::runUntil([&] { return early.size() + heard.size() == 2; }));
    first.reset();
    logind.prepareForSleep(false);
    EXPECT_TRUE(EventLoop::runUntil([&] { return heard.size() == 2; }));
    EXPECT_EQ(early, Heard{"sleep"});
}

TEST_F(SleepObservationTest, whatIsUnderWayAtTheEndIsNotHeard) {
    std::vector<std::unique_ptr<PowerObservation>> observations;
    const auto endAll = [&] {
        heard.emplace_back("sleep");
        observations.clear(); // including the one whose callback runs
    };
    for (int i = 0; i < 5; ++i) {
        observations.push_back(power->observe(endAll, [] {}));
    }
    Heard last;
    const auto other = observe(last);
    awaitConnection();
    logind.prepareForSleep(true);
    logind.prepareForSleep(false);
    EXPECT_TRUE(EventLoop::runUntil([&] { return last.size() == 2; }));
    EXPECT_EQ(heard, Heard{"sleep"});
}

TEST_F(SleepObservationTest, observerMayEndPowerManagement) {
    auto observation = power->observe(
        [&] {
            heard.emplace_back("sleep");
            power.reset();
        },
        [] {});
    awaitConnection();
    logind.prepareForSleep(true);
    EXPECT_TRUE(EventLoop::runUntil([&] { return power == nullptr; }));
    observation.reset();
    EXPECT_EQ(heard, Heard{"sleep"});
}

TEST_F(SleepObservationTest, onlyTheLoginManagerIsBelieved) {
    const auto observation = observe(heard);
    awaitConnection();
    broadcast("/org/freedesktop/login1", "org.freedesktop.login1.Manager", "PrepareForSleep",
              {true});
    QDBusConnection::disconnectFromBus("an impostor");
    logind.prepareForSleep(false);
    EXPECT_TRUE(EventLoop::runUntil([&] { return !heard.empty(); }));
    EXPECT_EQ(heard, Heard{"wake"});
}

TEST_F(SleepObservationTest, onlyTheBusNamesTheLoginManager) {
    const auto observation = observe(heard);
    awaitConnection();
    const auto impostor = systemBus.connect("an impostor").baseService();
    broadcast("/org/freedesktop/DBus", "org.freedesktop.DBus", "NameOwnerChanged",
              {"org.freedesktop.login1", "", impostor});
    broadcast("/org/freedesktop/login1", "org.freedesktop.login1.Manager", "PrepareForSleep",
              {true});
    QDBusConnection::disconnectFromBus("an impostor");
    logind.prepareForSleep(false);
    EXPECT_TRUE(EventLoop::runUntil([&] { return !heard.empty(); }));
    EXPECT_EQ(heard, Heard{"wake"});
}

TEST_F(PowerManagementTest, nextLoginManagerIsHeardToo) {
    auto logind = std::make_unique<MockLogind>(systemBus);
    start();
    Heard heard;
    const auto observation =
        power->observe([&] { heard.emplace_back("sleep"); }, [&] { heard.emplace_back("wake"); });
    const auto held = hold();
    ASSERT_TRUE(logind->eventuallyHas(sleepAndIdle));
    logind->prepareForSleep(true);
    EXPECT_TRUE(EventLoop::runUntil([&] { return heard == Heard{"sleep"}; }));
    logind.reset(); // first, because both use the same name
    logind = std::make_unique<MockLogind>(systemBus);
    logind->prepareForSleep(false);
    EXPECT_TRUE(EventLoop::runUntil([&] { return heard == Heard{"sleep", "wake"}; }));
}

} // namespace
} // namespace vantoro::testing

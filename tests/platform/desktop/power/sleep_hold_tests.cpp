// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <memory>
#include <string>

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>

#include <gtest/gtest.h>

#include "tests/control/event_loop.h"
#include "tests/platform/desktop/bus/silent_bus.h"
#include "tests/platform/desktop/power/mock_logind.h"
#include "tests/platform/desktop/power/power_fixture.h"

namespace vantoro::testing {
namespace {

class SleepHoldTest : public PowerManagementTest {
protected:
    static QStringList twice(const QStringList& inhibitors) {
        auto both = inhibitors + inhibitors;
        both.sort();
        return both;
    }

    /// How often the event loop wakes in 0.3 s.
    static int wakings() {
        bool over = false;
        int count = 0;
        QCoreApplication::processEvents();
        QTimer::singleShot(300, [&] { over = true; });
        const auto counting = QObject::connect(QAbstractEventDispatcher::instance(),
                                               &QAbstractEventDispatcher::awake, [&] { ++count; });
        while (!over) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        QObject::disconnect(counting);
        return count;
    }
};

TEST_F(SleepHoldTest, isInForceFromTheCallToItsEnd) {
    const MockLogind logind(systemBus);
    start();
    EXPECT_EQ(logind.inhibitors(), QStringList());
    auto held = hold();
    EXPECT_TRUE(logind.eventuallyHas(sleepAndIdle));
    logind.prepareForSleep(true);
    logind.prepareForSleep(false);
    EXPECT_EQ(logind.inhibitors(), sleepAndIdle);
    held.reset();
    EXPECT_TRUE(logind.eventuallyHas({}));
}

TEST_F(SleepHoldTest, eachHoldIsOneOfItsOwn) {
    const MockLogind logind(systemBus);
    start();
    auto first = hold();
    const auto second = power->holdOffSleep("saving");
    const QStringList ofSecond{"idle, Vantoro, saving, block", "shutdown, Vantoro, saving, delay",
                               "sleep, Vantoro, saving, delay"};
    auto all = sleepAndIdle + ofSecond;
    all.sort();
    EXPECT_TRUE(logind.eventuallyHas(all));
    first.reset();
    EXPECT_TRUE(logind.eventuallyHas(ofSecond));
}

TEST_F(SleepHoldTest, sleepWaitsUntilItsObserverIsReady) {
    const MockLogind logind(systemBus);
    start();
    auto held = hold();
    ASSERT_TRUE(logind.eventuallyHas(sleepAndIdle));
    bool sleeping = false;
    const auto observation = power->observe([&] { sleeping = true; }, [] {});
    logind.prepareForSleep(true);
    EXPECT_TRUE(EventLoop::runUntil([&] { return sleeping; }));
    EXPECT_EQ(logind.inhibitors(), sleepAndIdle); // the recording is being saved
    held.reset();
    EXPECT_TRUE(logind.eventuallyHas({}));
}

TEST_F(SleepHoldTest, shutdownWaitsUntilItsObserverIsReady) {
    const MockLogind logind(systemBus);
    start();
    auto held = hold();
    ASSERT_TRUE(logind.eventuallyHas(sleepAndIdle));
    bool ending = false;
    const auto observation = power->observe([&] { ending = true; }, [] {});
    logind.prepareForShutdown(true);
    EXPECT_TRUE(EventLoop::runUntil([&] { return ending; }));
    EXPECT_EQ(logind.inhibitors(), sleepAndIdle); // the recording is being saved
    held.reset();
    EXPECT_TRUE(logind.eventuallyHas({}));
}

TEST_F(SleepHoldTest, waitsForALoginManagerToAppear) {
    start();
    const auto held = hold();
    const MockLogind logind(systemBus);
    EXPECT_TRUE(logind.eventuallyHas(sleepAndIdle));
}

TEST_F(SleepHoldTest, isTakenAgainFromTheNextLoginManager) {
    auto logind = std::make_unique<MockLogind>(systemBus);
    start();
    auto held = hold();
    auto ended = hold();
    ASSERT_TRUE(logind->eventuallyHas(twice(sleepAndIdle)));
    ended.reset();
    logind.reset(); // first, because both use the same name
    logind = std::make_unique<MockLogind>(systemBus);
    EXPECT_TRUE(logind->eventuallyHas(sleepAndIdle));
    held.reset();
    EXPECT_TRUE(logind->eventuallyHas({}));
}

TEST_F(SleepHoldTest, goesOnWithoutPowerManagement) {
    const MockLogind logind(systemBus);
    start();
    auto held = hold();
    power.reset();
    EXPECT_TRUE(logind.eventuallyHas(sleepAndIdle));
    held.reset();
    EXPECT_TRUE(logind.eventuallyHas({}));
}

TEST_F(SleepHoldTest, withoutAnyBusNothingHappensAtOnce) {
    for (const std::string address :
         {"", "unix:path=/nowhere", "nonsense", "autolaunch:", "unix:path=/dev/null"}) {
        EXPECT_TRUE(isDoneAtOnce([&] {
            start({.system = address, .session = address});
            const auto observation = power->observe([] { FAIL(); }, [] { FAIL(); });
            const auto held = hold();
            QCoreApplication::processEvents();
            power.reset();
        })) << address;
    }
}

TEST_F(SleepHoldTest, busThatSaysNothingKeepsNobodyWaiting) {
    const SilentBus bus;
    EXPECT_TRUE(isDoneAtOnce([&] {
        start({.system = bus.address(), .session = bus.address()});
        const auto observation = power->observe([] { FAIL(); }, [] { FAIL(); });
        auto held = hold();
        EXPECT_TRUE(EventLoop::runUntil([&] { return bus.isConnectedTo(); }));
        QCoreApplication::processEvents();
        held.reset();
        power.reset();
    }));
}

TEST_F(SleepHoldTest, busThatFreezesKeepsNobodyWaiting) {
    const PrivateBus system;
    const PrivateBus session;
    const auto logind = std::make_unique<MockLogind>(system);
    start({.system = system.address().toStdString(), .session = session.address().toStdString()});
    auto held = hold();
    ASSERT_TRUE(logind->eventuallyHas(sleepAndIdle));
    system.freeze();
    session.freeze();
    EXPECT_TRUE(isDoneAtOnce([&] {
        for (int i = 0; i < 2'000; ++i) { // more than a socket buffers
            held = hold();
        }
        QCoreApplication::processEvents();
        held.reset();
        power.reset();
    }));
}

TEST_F(SleepHoldTest, sessionBusThatEndsLeavesTheLoginManager) {
    const MockLogind logind(systemBus);
    auto session = std::make_unique<PrivateBus>();
    start(
        {.system = systemBus.address().toStdString(), .session = session->address().toStdString()});
    auto held = hold();
    ASSERT_TRUE(logind.eventuallyHas(sleepAndIdle));
    session.reset();
    auto another = hold();
    EXPECT_TRUE(logind.eventuallyHas(twice(sleepAndIdle)));
    held.reset();
    another.reset();
    EXPECT_TRUE(logind.eventuallyHas({}));
}

TEST_F(SleepHoldTest, systemBusThatEndsEndsNothingElse) {
    auto system = std::make_unique<PrivateBus>();
    auto logind = std::make_unique<MockLogind>(*system);
    start(
        {.system = system->address().toStdString(), .session = sessionBus.address().toStdString()});
    auto held = hold();
    ASSERT_TRUE(logind->eventuallyHas(sleepAndIdle));
    logind.reset();
    system.reset();
    EXPECT_TRUE(isDoneAtOnce([&] {
        held = hold();
        QCoreApplication::processEvents();
        held.reset();
    }));
}

TEST_F(SleepHoldTest, wakesNobodyWhileNothingHappens) {
    const MockLogind logind(systemBus);
    start();
    const auto held = hold();
    ASSERT_TRUE(logind.eventuallyHas(sleepAndIdle));
    // The test's timer, and the event loop's own wakes. A busy machine may deliver late answers at
    // first; a periodic wake-up would recur each time.
    constexpr int few = 3;
    int least = wakings();
    for (int i = 0; i < 20 && least > few; ++i) {
        least = std::min(least, wakings());
    }
    EXPECT_LE(least, few);
}

} // namespace
} // namespace vantoro::testing

// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/status_area/status_notifier_area.h"

#include <optional>

#include <QtCore/QElapsedTimer>

#include <gtest/gtest.h>

#include "tests/control/event_loop.h"
#include "tests/platform/desktop/bus/silent_bus.h"
#include "tests/platform/desktop/status_area/status_notifier_fixture.h"

namespace vantoro::testing {
namespace {

class StatusNotifierAreaTest : public StatusNotifierTest {
protected:
    std::optional<TestWatcher> watcher;
    int changes = 0;
    std::unique_ptr<desktop::StatusNotifierArea> watched;

    void SetUp() override { watch(); }

    void watch() {
        watched = std::make_unique<desktop::StatusNotifierArea>(bus.address().toStdString());
        watched->setAvailabilityChanged([this] { ++changes; });
    }

    bool eventuallyChanges(int times) {
        return EventLoop::runUntil([&] { return changes >= times; });
    }
};

TEST_F(StatusNotifierAreaTest, isNotKnownBeforeTheBusHasAnswered) {
    EXPECT_EQ(watched->isAvailable(), std::nullopt);
}

TEST_F(StatusNotifierAreaTest, isNotAvailableWithoutAWatcher) {
    ASSERT_TRUE(eventuallyChanges(1));
    EXPECT_EQ(watched->isAvailable(), false);
}

TEST_F(StatusNotifierAreaTest, isAvailableWithAWatcherAndAPanel) {
    watcher.emplace(bus);
    watch();
    ASSERT_TRUE(eventuallyChanges(1));
    EXPECT_EQ(watched->isAvailable(), true);
}

TEST_F(StatusNotifierAreaTest, comesAndGoesWithTheWatcher) {
    ASSERT_TRUE(eventuallyChanges(1));
    watcher.emplace(bus);
    ASSERT_TRUE(eventuallyChanges(2));
    EXPECT_EQ(watched->isAvailable(), true);
    watcher.reset();
    ASSERT_TRUE(eventuallyChanges(3));
    EXPECT_EQ(watched->isAvailable(), false);
}

TEST_F(StatusNotifierAreaTest, comesAndGoesWithThePanel) {
    watcher.emplace(bus, false);
    watch();
    ASSERT_TRUE(eventuallyChanges(1));
    EXPECT_EQ(watched->isAvailable(), false);
    watcher->setHasPanel(true);
    ASSERT_TRUE(eventuallyChanges(2));
    EXPECT_EQ(watched->isAvailable(), true);
    watcher->setHasPanel(false);
    ASSERT_TRUE(eventuallyChanges(3));
    EXPECT_EQ(watched->isAvailable(), false);
}

TEST_F(StatusNotifierAreaTest, watcherThatDoesNotSayIsTakenForAPanel) {
    const BusService another(bus, "org.kde.StatusNotifierWatcher",
                             [](const QDBusMessage& question) {
                                 return question.createErrorReply(QDBusError::UnknownProperty, "");
                             });
    watch();
    ASSERT_TRUE(eventuallyChanges(1));
    EXPECT_EQ(watched->isAvailable(), true);
}

TEST_F(StatusNotifierAreaTest, changeMayEndTheArea) {
    watched->setAvailabilityChanged([&] { watched.reset(); });
    EXPECT_TRUE(EventLoop::runUntil([&] { return watched == nullptr; }));
}

TEST_F(StatusNotifierAreaTest, isNotAvailableWithoutABus) {
    const desktop::StatusNotifierArea none("");
    EXPECT_EQ(none.isAvailable(), false);
}

TEST_F(StatusNotifierAreaTest, isNotKnownOnABusThatHangsAndKeepsNobodyWaiting) {
    const SilentBus silent;
    QElapsedTimer timer;
    timer.start();
    {
        const desktop::StatusNotifierArea hanging(silent.address());
        ASSERT_TRUE(eventuallyChanges(1)); // on the other bus, which answers
        EXPECT_EQ(hanging.isAvailable(), std::nullopt);
        EXPECT_TRUE(silent.isConnectedTo()); // it was asked
    }
    EXPECT_LT(std::chrono::milliseconds(timer.elapsed()), withoutWaiting);
}

} // namespace
} // namespace vantoro::testing

// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/task_bar/launcher_entry.h"

#include <vector>

#include <QtCore/QElapsedTimer>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>

#include <gtest/gtest.h>

#include "tests/control/event_loop.h"
#include "tests/platform/desktop/bus/private_bus.h"
#include "tests/platform/desktop/bus/silent_bus.h"

namespace vantoro::testing {
namespace {

/// A task bar.
class TaskBar : public QObject {
    Q_OBJECT

public:
    std::vector<QDBusMessage> updates;

public Q_SLOTS:

    void update(const QDBusMessage& message) { updates.push_back(message); }
};

class LauncherEntryTest : public ::testing::Test {
protected:
    PrivateBus bus;
    TaskBar bar;
    QDBusConnection connection = bus.connect("task bar");
    desktop::LauncherEntry entry{bus.address().toStdString()};

    LauncherEntryTest() {
        EXPECT_TRUE(connection.connect({}, {}, "com.canonical.Unity.LauncherEntry", "Update", &bar,
                                       SLOT(update(QDBusMessage))));
    }

    ~LauncherEntryTest() override { QDBusConnection::disconnectFromBus("task bar"); }

    QVariantMap properties(std::size_t update) {
        EXPECT_TRUE(EventLoop::runUntil([&] { return bar.updates.size() > update; }));
        const auto arguments = bar.updates.at(update).arguments();
        EXPECT_EQ(bar.updates.at(update).signature(), "sa{sv}");
        EXPECT_EQ(arguments.value(0), "application://com.vantoro.app.desktop");
        return qdbus_cast<QVariantMap>(arguments.value(1));
    }
};

TEST_F(LauncherEntryTest, taskBarsAreToldOfProgressAndItsEnd) {
    entry.setProgress(0.25);
    entry.setProgress(0.25);
    entry.setProgress(0.5);
    entry.setProgress(std::nullopt);
    EXPECT_EQ(properties(0), QVariantMap({{"progress", 0.25}, {"progress-visible", true}}));
    EXPECT_TRUE(EventLoop::runUntil(
        [&] { return properties(bar.updates.size() - 1)["progress-visible"] == false; }));
}

TEST_F(LauncherEntryTest, eachStepIsToldOnce) {
    entry.setProgress(0.25);
    properties(0);
    entry.setProgress(0.25);
    entry.setProgress(0.5);
    EXPECT_EQ(properties(1)["progress"], 0.5);
}

TEST(LauncherEntryAloneTest, connectsOnlyForProgressAndKeepsNobodyWaiting) {
    const SilentBus silent;
    QElapsedTimer timer;
    timer.start();
    {
        desktop::LauncherEntry entry(silent.address());
        entry.setProgress(std::nullopt);
        EXPECT_FALSE(silent.isConnectedTo());
        entry.setProgress(0.5);
        EXPECT_TRUE(silent.isConnectedTo());
    }
    EXPECT_LT(std::chrono::milliseconds(timer.elapsed()), withoutWaiting);
    desktop::LauncherEntry("").setProgress(0.5);
}

} // namespace
} // namespace vantoro::testing

#include "launcher_entry_tests.moc"

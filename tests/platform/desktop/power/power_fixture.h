// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include <QtCore/QElapsedTimer>
#include <QtCore/QStringList>

#include <gtest/gtest.h>

#include "platform/desktop/power/power_management.h"
#include "tests/platform/desktop/bus/private_bus.h"

namespace vantoro::testing {

/// Power management on private buses.
class PowerManagementTest : public ::testing::Test {
protected:
    const QStringList sleepOnly{"shutdown, Vantoro, recording, delay",
                                "sleep, Vantoro, recording, delay"};
    const QStringList sleepAndIdle = QStringList("idle, Vantoro, recording, block") + sleepOnly;
    PrivateBus systemBus;
    PrivateBus sessionBus;
    std::chrono::milliseconds portalPatience = std::chrono::minutes(10); // unless under test
    std::unique_ptr<desktop::DesktopPowerManagement> power;

    void start() {
        start({.system = systemBus.address().toStdString(),
               .session = sessionBus.address().toStdString()});
    }

    void start(const desktop::BusAddresses& buses) {
        power = std::make_unique<desktop::DesktopPowerManagement>(buses, portalPatience);
    }

    std::unique_ptr<SleepHold> hold() const { return power->holdOffSleep("recording"); }

    static bool isDoneAtOnce(const std::function<void()>& work) {
        QElapsedTimer timer;
        timer.start();
        work();
        return std::chrono::milliseconds(timer.elapsed()) < withoutWaiting;
    }
};

} // namespace vantoro::testing

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "control/ports/power_management.h"
#include "platform/desktop/bus/bus_addresses.h"

namespace vantoro::desktop {

/// The login manager's sleep and wake, and what it and the desktop portal do to hold them off. A
/// shutdown is held off, and told of, as a sleep that nothing wakes from. Where these are missing,
/// nothing is observed and nothing held off.
///
/// Never keeps the main thread waiting, and wakes it only when there is something to do. What it
/// returns may live longer than it, and then goes on working.
class DesktopPowerManagement final : public PowerManagement {
public:
    /// `portalPatience`: how long the portal may take to answer until the login manager is asked.
    explicit DesktopPowerManagement(
        const BusAddresses& buses = standardBusAddresses(),
        std::chrono::milliseconds portalPatience = std::chrono::seconds(3));
    ~DesktopPowerManagement() override;

    std::unique_ptr<PowerObservation> observe(std::function<void()> willSleep,
                                              std::function<void()> didWake) override;
    std::unique_ptr<SleepHold> holdOffSleep(const std::string& reason) override;

private:
    class Services;
    class Observation;
    class Hold;

    std::shared_ptr<Services> services_;
    std::chrono::milliseconds portalPatience_;
};

} // namespace vantoro::desktop

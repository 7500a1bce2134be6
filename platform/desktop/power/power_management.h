// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "control/ports/power_management.h"
#include "platform/desktop/bus/bus_addresses.h"

namespace vantoro::desktop {

/// Sleep through the login manager and the desktop portal. A shutdown is held off, and reported, as
/// a sleep without a wake. Without these services nothing is observed or held off. Never blocks,
/// and wakes the main thread only for work. The returned objects may outlive this.
class DesktopPowerManagement final : public PowerManagement {
public:
    /// `portalPatience`: how long to wait for the portal before asking the login manager instead.
    explicit DesktopPowerManagement(
        const BusAddresses& buses = standardBusAddresses(),
        std::chrono::milliseconds portalPatience = std::chrono::seconds(3));

    std::unique_ptr<PowerObservation> observe(std::function<void()> willSleep,
                                              std::function<void()> didWake) override;
    std::unique_ptr<SleepHold> holdOffSleep(const std::string& reason) override;

private:
    struct Services;
    class Observation;
    class Hold;

    std::shared_ptr<Services> services_;
    std::chrono::milliseconds portalPatience_;
};

} // namespace vantoro::desktop

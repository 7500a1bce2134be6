// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <cstdint>

#include "platform/desktop/power/power_management.h"

namespace vantoro::desktop {

/// Whether a service is there; unknown if no answer came in time.
enum class Presence : std::uint8_t { unknown, absent, present };

/// The login manager's reply to a brief sleep delay.
enum class SleepDelay : std::uint8_t { unknown, noLoginManager, refused, granted };

/// The desktop services that recording uses.
struct DesktopSurvey {
    Presence sessionBus = Presence::unknown; ///< unless present, its services are unknown
    Presence statusArea = Presence::unknown; ///< present only with a panel that shows it
    Presence portal = Presence::unknown;     ///< one that can keep the machine awake
    SleepDelay sleepDelay = SleepDelay::unknown;

    friend bool operator==(const DesktopSurvey&, const DesktopSurvey&) = default;
};

/// Asks all services at once; waits for at most the limit. Any thread.
DesktopSurvey surveyDesktop(const BusAddresses& buses, std::chrono::milliseconds limit);

} // namespace vantoro::desktop

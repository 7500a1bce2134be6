// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <cstdint>

#include "platform/desktop/power/power_management.h"

namespace vantoro::desktop {

/// Whether something is there; unknown where no answer came in time.
enum class Presence : std::uint8_t { unknown, absent, present };

/// What the login manager said to putting off sleep for a moment.
enum class SleepDelay : std::uint8_t { unknown, noLoginManager, refused, granted };

/// What recording finds of the desktop's services.
struct DesktopSurvey {
    Presence sessionBus = Presence::unknown; ///< where it is not present, no service of it is known
    Presence statusArea = Presence::unknown; ///< with a panel that shows it
    /// One that can keep the machine awake; started by the question where that is possible.
    Presence portal = Presence::unknown;
    SleepDelay sleepDelay = SleepDelay::unknown;

    friend bool operator==(const DesktopSurvey&, const DesktopSurvey&) = default;
};

/// Asks all of them at a time, and waits until they have answered or the limit has passed. Any
/// thread.
DesktopSurvey surveyDesktop(const BusAddresses& buses, std::chrono::milliseconds limit);

} // namespace vantoro::desktop

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "platform/desktop/bus/bus_addresses.h"

namespace vantoro::desktop {

/// Buses and services that accept connections but do not answer, and that libraries would wait for.
struct SilentBuses {
    bool system = false;
    bool session = false;
    bool accessibility = false;
    bool menuRegistrar = false; ///< the global menu, which the toolkit tells of each menu bar

    friend bool operator==(const SilentBuses&, const SilentBuses&) = default;
};

/// From the environment.
struct AccessibilitySettings {
    std::string address;     ///< of the accessibility bus; if empty, the session bus knows it
    bool isAlwaysOn = false; ///< on without asking the session bus
};

struct BusQuestions {
    BusAddresses addresses;                                    ///< an empty one is not asked
    std::optional<AccessibilitySettings> accessibility;        ///< for programs with a window
    std::chrono::milliseconds limit = std::chrono::seconds(2); ///< for all questions together
    int interruption = -1; ///< a descriptor; stops waiting when it becomes readable
};

/// Asks all buses at once; those that do not answer within the limit are silent. Any thread.
SilentBuses findSilentBuses(const BusQuestions& questions);

/// What uses the buses of this process.
enum class BusUsers { soundAlone, soundAndWindow };

/// Finds the silent buses of this process's environment and removes them from it, so that no
/// library waits for them. Call before the first thread starts and before the toolkit is used.
SilentBuses leaveOutSilentBuses(BusUsers users, int interruption);

} // namespace vantoro::desktop

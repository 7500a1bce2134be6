// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <optional>

#include "platform/desktop/bus/accessibility_questions.h"
#include "platform/desktop/bus/bus_addresses.h"

namespace vantoro::desktop {

/// Which of the buses that libraries wait for let everybody connect, and do not answer, and which
/// services likewise.
struct SilentBuses {
    bool system = false;
    bool session = false;
    bool accessibility = false;
    /// What has the menus of all windows in one place, which the toolkit tells of each menu bar.
    bool menuRegistrar = false;

    friend bool operator==(const SilentBuses&, const SilentBuses&) = default;
};

struct BusQuestions {
    BusAddresses addresses; ///< an empty one is not asked
    /// Of a program with a window: how it is shown to screen readers. Nothing for others.
    std::optional<AccessibilitySettings> accessibility;
    std::chrono::milliseconds limit = std::chrono::seconds(2); ///< for all of them together
    int interruption = -1; ///< a descriptor: once it can be read from, nothing is waited for
};

/// Asks all of them at a time; who has not answered at the end is silent. Any thread.
SilentBuses findSilentBuses(const BusQuestions& questions);

/// Who will use the buses of this process.
enum class BusUsers { soundAlone, soundAndWindow };

/// Finds those of this process's environment, and takes buses out of it: toolkit, sound library and
/// all others then go on as without a bus, where they would wait for half a minute or for ever. To
/// be called before the first thread is started, and before a toolkit. `interruption` as above.
SilentBuses leaveOutSilentBuses(BusUsers users, int interruption);

} // namespace vantoro::desktop

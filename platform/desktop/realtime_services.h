// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <functional>
#include <mutex>
#include <optional>

#include "platform/desktop/bus/bus_addresses.h"

namespace vantoro::desktop {

/// Whether the services that grant real-time priority, the portal and the system's, answer. A
/// missing one counts as answering; none is started. Blocks for at most the limit; any thread.
bool realtimeServicesAnswer(const BusAddresses& addresses,
                            std::chrono::milliseconds limit = std::chrono::seconds(2));

/// On the buses of the environment. After no answer, false for one minute without asking.
bool realtimeServicesAnswerHere();

/// Remembers that a service did not answer. Any thread.
class Silence {
public:
    /// `ask` blocks, and returns true if there was no answer; then this returns true for one minute
    /// without asking. Concurrent callers wait for each other.
    bool isSilent(const std::function<bool()>& ask);

private:
    std::mutex mutex_;
    std::optional<std::chrono::steady_clock::time_point> until_; // guarded by mutex_
};

} // namespace vantoro::desktop

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>

#include "platform/desktop/bus/bus_addresses.h"

namespace vantoro::desktop {

/// Whether the services that grant real-time priority, the portal and the system's, answer on their
/// buses. A missing service counts as answering, and none is started. Blocks for at most the limit;
/// any thread.
bool realtimeServicesAnswer(const BusAddresses& addresses,
                            std::chrono::milliseconds limit = std::chrono::seconds(2));

/// On the buses of this process's environment. After no answer, returns false for one minute
/// without asking.
bool realtimeServicesAnswerHere();

} // namespace vantoro::desktop

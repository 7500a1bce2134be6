// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>

#include "platform/desktop/bus/bus_addresses.h"

namespace vantoro::desktop {

/// Whether those who give an ordinary user's program a real-time thread, the portal and the
/// system's service, answer, with their buses. One that is not there counts as answering, and is
/// not started. Any thread that may wait for the limit.
bool realtimeServicesAnswer(const BusAddresses& addresses,
                            std::chrono::milliseconds limit = std::chrono::seconds(2));

/// On the buses of this process's environment; who did not answer is not asked again for a minute.
bool realtimeServicesAnswerHere();

} // namespace vantoro::desktop

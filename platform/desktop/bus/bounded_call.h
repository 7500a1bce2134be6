// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/desktop/bus/bus_calls.h"

namespace vantoro::desktop {

/// How long to wait for a service: at most `limit`, and not after `stop`.
struct Patience {
    /// Long enough to start a file manager from a slow disk.
    std::chrono::milliseconds limit = std::chrono::seconds(10);
    std::stop_token stop;
};

/// Calls a method over a separate connection to the bus at the address. Returns whether an answer
/// came that is not an error, and passes it to `read`. Sends nothing after `patience.stop`.
/// Blocking; any thread.
bool boundedCall(const std::string& busAddress, const BusMethod& question,
                 const std::vector<BusArgument>& arguments, const Patience& patience,
                 const BusReceive& read = {});

} // namespace vantoro::desktop

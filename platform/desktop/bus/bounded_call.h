// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/desktop/bus/bus_calls.h"

namespace vantoro::desktop {

/// How long others are waited for: for `limit` at most, and not after `stop`.
struct Patience {
    /// A file manager may have to be started first, from a slow disk.
    std::chrono::milliseconds limit = std::chrono::seconds(10);
    std::stop_token stop;
};

/// Asks over a connection of its own to the bus at the address, and waits for the answer. Whether
/// it came and is not an error; `read` is called with it then. Does not ask any more after the
/// patience's `stop`. Any thread that may wait.
bool boundedCall(const std::string& busAddress, const BusMethod& question,
                 const std::vector<BusArgument>& arguments, const Patience& patience,
                 const BusReceive& read = {});

} // namespace vantoro::desktop

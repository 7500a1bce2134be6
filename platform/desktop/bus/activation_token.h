// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

struct sd_bus_message;

namespace vantoro::desktop {

/// Reads a call's next argument, a dictionary, which may hold under one of two keys what brings a
/// window to the front. A negative number if it cannot be read. Main thread.
int readActivationToken(sd_bus_message* call, std::string& token);

} // namespace vantoro::desktop

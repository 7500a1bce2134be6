// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

namespace vantoro::desktop {

/// The addresses of the buses; empty for none.
struct BusAddresses {
    std::string system;
    std::string session;
};

/// From the environment, with the standard locations as fallback.
BusAddresses standardBusAddresses();

} // namespace vantoro::desktop

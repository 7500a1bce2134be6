// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

namespace vantoro::desktop {

/// Where the buses are to be found; empty for a bus that there is not.
struct BusAddresses {
    std::string system;
    std::string session;
};

/// As programs are told in their environment, otherwise the places that are agreed upon.
BusAddresses standardBusAddresses();

} // namespace vantoro::desktop

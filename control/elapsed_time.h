// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <string>

namespace vantoro {

/// Minutes and seconds, "59:59"; from an hour on with hours, of any number of digits: "100:00:00".
std::string formattedElapsedTime(std::int64_t seconds);

/// Ends the program rather than count past the last number.
std::int64_t oneSecondLater(std::int64_t seconds);

} // namespace vantoro

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <string>

namespace vantoro {

/// "mm:ss", or "hh:mm:ss" from one hour on; the hours may have more than two digits: "100:00:00".
std::string formattedElapsedTime(std::int64_t seconds);

/// Aborts the program on overflow.
std::int64_t nextSecond(std::int64_t seconds);

} // namespace vantoro

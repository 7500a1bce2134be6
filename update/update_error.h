// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

namespace vantoro {

/// Why a check for a newer version came to nothing. The user is only told that it did.
enum class UpdateError : std::uint8_t {
    invalidResponse, ///< no answer in time, or one that cannot be used
};

} // namespace vantoro

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

namespace vantoro {

/// Why a check failed. The user learns only that it failed.
enum class UpdateError : std::uint8_t {
    invalidResponse, ///< no answer in time, or an unusable one
};

} // namespace vantoro

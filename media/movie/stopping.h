// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <stop_token>
#include <system_error>

namespace vantoro::media {

/// Throws std::errc::operation_canceled on a stop request.
inline void throwIfStopped(const std::stop_token& stop) {
    if (stop.stop_requested()) {
        throw std::system_error(std::make_error_code(std::errc::operation_canceled));
    }
}

} // namespace vantoro::media

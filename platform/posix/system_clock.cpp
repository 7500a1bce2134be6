// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/posix/system_clock.h"

#include <cerrno>
#include <system_error>

namespace vantoro::posix {

double SystemClock::systemUptime() const {
    std::timespec now{};
    if (::clock_gettime(CLOCK_MONOTONIC, &now) != 0) {
        throw std::system_error(errno, std::system_category(), "Cannot read the clock");
    }
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

std::tm SystemClock::localTime() const {
    ::tzset(); // localtime_r alone may miss a zone change
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    if (::localtime_r(&now, &local) == nullptr) {
        throw std::system_error(errno, std::system_category(), "Cannot tell the local time");
    }
    return local;
}

} // namespace vantoro::posix

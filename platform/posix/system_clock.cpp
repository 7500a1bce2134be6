// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/posix/system_clock.h"

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <system_error>

namespace vantoro::posix {

double SystemClock::systemUptime() const {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
}

namespace {

std::tm localTimeAt(std::time_t now) {
    ::tzset(); // localtime_r alone may miss a zone change
    std::tm local{};
    if (::localtime_r(&now, &local) == nullptr) {
        throw std::system_error(errno, std::system_category(), "Cannot tell the local time");
    }
    return local;
}

} // namespace

std::tm SystemClock::localTime() const {
    return localTimeAt(std::time(nullptr));
}

WallTime SystemClock::wallTime() const {
    const std::time_t now = std::time(nullptr);
    return {.seconds = now, .utcOffset = static_cast<std::int32_t>(localTimeAt(now).tm_gmtoff)};
}

} // namespace vantoro::posix

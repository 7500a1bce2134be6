// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/elapsed_time.h"

#include <cstdlib>

namespace vantoro {

namespace {

std::string twoDigits(std::int64_t number) {
    return (number < 10 ? "0" : "") + std::to_string(number);
}

} // namespace

std::string formattedElapsedTime(std::int64_t seconds) {
    const auto clock = twoDigits(seconds % 3600 / 60) + ":" + twoDigits(seconds % 60);
    return seconds < 3600 ? clock : twoDigits(seconds / 3600) + ":" + clock;
}

std::int64_t nextSecond(std::int64_t seconds) {
    std::int64_t later = 0;
    if (__builtin_add_overflow(seconds, std::int64_t{1}, &later)) {
        std::abort();
    }
    return later;
}

} // namespace vantoro

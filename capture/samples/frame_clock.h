// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <vector>

namespace vantoro::capture {

/// All sound is placed on one grid: 48 kHz frames since the zero of CLOCK_MONOTONIC, the clock of
/// PipeWire's cycle stamps.
inline constexpr std::int32_t framesPerSecond = 48000;

/// The nearest grid position.
constexpr std::int64_t gridPosition(std::uint64_t nanoseconds) noexcept {
    // 48000 / 1e9, reduced: no overflow in the first hundred years of uptime.
    return static_cast<std::int64_t>((nanoseconds * 3 + 31250) / 62500);
}

constexpr std::int64_t framesInMilliseconds(std::int64_t milliseconds) noexcept {
    return milliseconds * framesPerSecond / 1000;
}

/// The current time in nanoseconds. Real-time safe.
inline std::uint64_t nanosecondsOn(clockid_t clock) noexcept {
    timespec time{};
    clock_gettime(clock, &time);
    return (static_cast<std::uint64_t>(time.tv_sec) * 1'000'000'000U) +
           static_cast<std::uint64_t>(time.tv_nsec);
}

/// The grid position where a recording starts, from the first stamp of each stream (0: none yet).
/// A stream that misses the first cycle cuts nothing from the others, and one that takes seconds to
/// wake delays nothing.
inline std::int64_t captureBeginning(std::vector<std::uint64_t> firstStamps, std::uint64_t now) {
    constexpr std::int64_t longestCycle = 8192; // frames
    std::erase(firstStamps, 0);
    if (firstStamps.empty()) {
        return gridPosition(now);
    }
    const auto [first, last] = std::ranges::minmax(firstStamps);
    return std::max(gridPosition(first), gridPosition(last) - longestCycle);
}

} // namespace vantoro::capture

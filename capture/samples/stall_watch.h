// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <algorithm>
#include <cstdint>

namespace vantoro::capture {

/// Detects that a stream's callbacks have stopped, the only sign of a sound server that hangs. Time
/// during which the machine was suspended, or our own process did not run, does not count.
class StallWatch {
public:
    static constexpr std::uint64_t limit = 10'000'000'000; // ns

    /// Call about twice a second. True if no callback came within the limit.
    bool update(std::uint64_t callbacks, std::uint64_t monotonic, std::uint64_t boottime) noexcept {
        const bool first = monotonic_ == 0;
        const bool suspended = boottime - monotonic > sleep_ + longestStep / 2;
        const std::uint64_t elapsed = std::min(monotonic - monotonic_, longestStep);
        idle_ = first || suspended || callbacks != callbacks_ ? 0 : idle_ + elapsed;
        callbacks_ = callbacks;
        monotonic_ = monotonic;
        sleep_ = boottime - monotonic; // total time suspended
        return idle_ >= limit;
    }

private:
    // A longer step between two updates means that our process did not run.
    static constexpr std::uint64_t longestStep = 1'000'000'000;

    std::uint64_t callbacks_ = 0;
    std::uint64_t monotonic_ = 0;
    std::uint64_t sleep_ = 0;
    std::uint64_t idle_ = 0;
};

} // namespace vantoro::capture

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <algorithm>
#include <cstdint>

namespace vantoro::capture {

/// Tells when a stream's callbacks have stopped coming: a sound server that hangs gives no other
/// sign. Time during which the machine was suspended, or we ourselves were not running, is no
/// fault of the server's.
class StallWatch {
public:
    static constexpr std::uint64_t limit = 10'000'000'000; // ns

    /// Called about twice a second. True when no callback has come for the limit.
    bool update(std::uint64_t callbacks, std::uint64_t monotonic, std::uint64_t boottime) noexcept {
        const bool first = monotonic_ == 0;
        const bool suspended = boottime - monotonic > sleep_ + longestStep / 2;
        const std::uint64_t elapsed = std::min(monotonic - monotonic_, longestStep);
        idle_ = first || suspended || callbacks != callbacks_ ? 0 : idle_ + elapsed;
        callbacks_ = callbacks;
        monotonic_ = monotonic;
        sleep_ = boottime - monotonic; // how long the machine has been suspended in all
        return idle_ >= limit;
    }

private:
    // A longer step than this between two updates means that we were not running.
    static constexpr std::uint64_t longestStep = 1'000'000'000;

    std::uint64_t callbacks_ = 0;
    std::uint64_t monotonic_ = 0;
    std::uint64_t sleep_ = 0;
    std::uint64_t idle_ = 0;
};

} // namespace vantoro::capture

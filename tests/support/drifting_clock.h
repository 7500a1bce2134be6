// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace vantoro::testing {

/// When the cycles of a sound card begin whose rate is off by so many millionths, and goes on to
/// wander: up for two minutes, down again for two minutes, and so on. In nanoseconds.
class DriftingClock {
public:
    DriftingClock(double millionths, double millionthsAMinute)
        : millionths_(millionths), millionthsAMinute_(millionthsAMinute) {}

    /// The cycle that is due, or one that begins now where none was for long.
    double begin(double now) {
        constexpr double longAgo = 0.5e9;
        if (next_ < now - longAgo) {
            next_ = now;
            first_ = first_ > 0 ? first_ : now;
        }
        return next_;
    }

    /// Returns when the cycle of so many frames that has begun ends.
    double advance(std::uint64_t frames) {
        next_ += static_cast<double>(frames) / (48000 * rate()) * 1e9;
        return next_;
    }

    void standStill(double nanoseconds) { next_ += nanoseconds; }

    /// How many seconds by this clock pass in a true one.
    double rate() const {
        constexpr double minute = 60e9;
        const double wandered = 2 - std::abs(std::fmod((next_ - first_) / minute, 4) - 2);
        return 1 + ((millionths_ + (millionthsAMinute_ * wandered)) * 1e-6);
    }

private:
    double millionths_;
    double millionthsAMinute_;
    double first_ = 0;
    double next_ = 0;
};

} // namespace vantoro::testing

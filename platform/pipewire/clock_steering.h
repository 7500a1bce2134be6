// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

namespace vantoro::pipewire {

/// Keeps a stream's count of frames in step with its stamps. A sound card's clock runs up to some
/// hundred millionths fast or slow against CLOCK_MONOTONIC; left alone, a long recording would
/// drift and then jump. The stream's resampler is asked for slightly more or fewer frames instead,
/// so slowly that nobody hears it.
///
/// A proportional-integral loop on one-second means of the difference, critically damped with a
/// time constant of 20 s: a sudden 400 millionths stay below 3 ms, and trembling stamps move the
/// pitch by some hundred-thousandths at most. It sets in only once a clock has been found to drift:
/// until then a resampler copies, which costs nothing and changes nothing.
class ClockSteering {
public:
    /// A deviation of the speed of at most this much is asked for (under 2 cents).
    static constexpr double maximumDeviation = 1e-3;

    /// One piece: its stamp, and by how many frames the count is behind it (negative: ahead).
    void observe(std::uint64_t nanoseconds, std::uint32_t clockId, std::int64_t framesBehind);

    /// How many frames the resampler should make of each one that it makes by itself.
    double speed() const noexcept { return speed_; }

private:
    void beginWindow(std::uint64_t nanoseconds);
    void watch(double secondsBehind);
    void steer(double secondsBehind, double windowSeconds);

    std::uint64_t windowStart_ = 0; // 0: none yet
    std::uint32_t clockId_ = 0;
    double sum_ = 0; // of seconds behind, over the window's pieces
    int count_ = 0;
    int driftingWindows_ = 0; // in a row
    bool steering_ = false;
    double drift_ = 0; // the integral: what the clock itself seems to need
    double speed_ = 1;
};

} // namespace vantoro::pipewire

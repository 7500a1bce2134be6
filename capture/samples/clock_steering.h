// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

#include "capture/samples/stamped_ring.h"

namespace vantoro::capture {

/// Keeps a stream's count of frames in step with its stamps. A sound card's clock runs up to some
/// hundred millionths fast or slow against CLOCK_MONOTONIC; left alone, a long recording would
/// drift and then jump. The stream's resampler is asked for slightly more or fewer frames instead,
/// so slowly that nobody hears it.
///
/// The drift is the slope of the line through one-second means of the difference between stamps
/// and frames, all of them at first and the last quarter of a minute later: so it is known within a
/// few seconds, and follows a clock that wanders. What the count is off by then goes within some
/// five seconds. A sudden 500 millionths stay below 2.5 ms. It sets in only once a clock has been
/// found to drift: until then a resampler copies, which costs nothing and changes nothing.
class ClockSteering {
public:
    /// A deviation of the speed of at most this much is asked for (under 2 cents).
    static constexpr double maximumDeviation = 1e-3;

    /// One piece, and by how many frames the count is behind its stamp (negative: ahead).
    void observe(const Stamp& stamp, std::int64_t framesBehind);

    /// How many frames the resampler should make of each one that it makes by itself.
    double speed() const noexcept { return speed_; }

private:
    void beginWindow(std::uint64_t nanoseconds);
    void beginAnew(const Stamp& stamp);
    void leaveOutSlip(const Stamp& stamp);
    double learn(double surplus, double windowSeconds);
    void watch(double secondsBehind);
    void steer(double secondsBehind);

    // Of the window.
    std::uint64_t windowStart_ = 0; // 0: none yet
    double behindSum_ = 0;          // s, of its pieces
    double surplusSum_ = 0; // s, of its pieces: by how much time passed more than frames came
    int count_ = 0;

    // Of the clock.
    std::uint32_t clockId_ = 0;
    std::uint64_t began_ = 0;  // stamp of the first piece, later by all pauses since then
    std::uint64_t next_ = 0;   // stamp that the next piece should have
    std::uint64_t frames_ = 0; // since the first piece
    int windows_ = 0;          // that the line goes through
    double surplus_ = 0;       // the line's end
    double drift_ = 0;         // and its slope, were the resampler left alone
    int jumps_ = 0;            // of the last windows

    int windowsBehind_ = 0; // in a row
    bool steering_ = false;
    double carry_ = 0; // what the steps of the resampler left over
    double speed_ = 1;
    double speedBefore_ = 1; // in the window before
};

} // namespace vantoro::capture

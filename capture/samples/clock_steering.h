// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

#include "capture/samples/sound_piece.h"

namespace vantoro::capture {

/// Keeps a stream's frame count in step with its stamps. A sound card's clock is up to a few
/// hundred ppm off CLOCK_MONOTONIC, so that a long recording would drift and then jump. Instead,
/// the stream's resampler produces slightly more or fewer frames, too slowly to be audible.
///
/// The drift is the slope of a line through one-second means of the difference between stamps and
/// frames, over at most 15 seconds. The offset is corrected within about five seconds; a sudden 500
/// ppm stay below 2.5 ms. Until a clock is found to drift, the resampler copies, which costs
/// nothing.
class ClockSteering {
public:
    /// Largest deviation of the speed (under 2 cents).
    static constexpr double maximumDeviation = 1e-3;

    /// `framesBehind`: by how much the count is behind the piece's stamp (negative: ahead).
    void observe(const Stamp& stamp, std::int64_t framesBehind);

    /// Frames that the resampler should produce for each frame of its nominal output.
    double speed() const noexcept { return speed_; }

private:
    void beginWindow(std::uint64_t nanoseconds);
    void restart(const Stamp& stamp);
    void excludeGap(const Stamp& stamp);
    double learn(double surplus, double windowSeconds);
    void watch(double secondsBehind);
    void steer(double secondsBehind);

    // The window's.
    std::uint64_t windowStart_ = 0; // 0: none yet
    double behindSum_ = 0;          // s, over its pieces
    double surplusSum_ = 0;         // s, over its pieces: time passed minus frames received
    int count_ = 0;

    // The clock's.
    std::uint32_t clockId_ = 0;
    std::uint64_t began_ = 0;  // stamp of the first piece, plus all gaps since
    std::uint64_t next_ = 0;   // expected stamp of the next piece
    std::uint64_t frames_ = 0; // since the first piece
    int windows_ = 0;          // on the line
    double surplus_ = 0;       // the line's end
    double drift_ = 0;         // its slope without steering
    int jumps_ = 0;            // in a row, up to the last window

    int windowsBehind_ = 0; // in a row
    bool steering_ = false;
    double carry_ = 0; // rounding error of the resampler's steps
    double speed_ = 1;
    double speedBefore_ = 1; // in the window before
};

} // namespace vantoro::capture

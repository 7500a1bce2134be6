// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/samples/clock_steering.h"

#include <algorithm>
#include <cmath>

#include "capture/samples/frame_clock.h"

namespace vantoro::capture {

namespace {

constexpr std::int64_t window = 1'000'000'000; // ns
// A larger distance between a piece's stamp and the end of the previous piece is a gap.
constexpr std::int64_t minimumGap = 5'000'000; // ns
constexpr int maximumWindows = 15;             // windows
constexpr double correctionTime = 5;           // s
constexpr double maximumDrift = 8e-4;
// A mean further off the line is a jump: no clock drifts that fast.
constexpr double jump = 1e-3;   // s
constexpr int maximumJumps = 2; // in a row
// The share of a new speed in the next window's mean: the resampler takes half a second to reach
// it.
constexpr double shareInNextWindow = 0.15;
// A slope counts as drift once it is unlikely to come from the stamps, whose means move by
// `jitter`.
constexpr int minimumWindows = 3;
constexpr double jitter = 1.5e-4; // s
constexpr double certainty = 3;   // standard deviations
constexpr double steepDrift = 5e-5;
// A larger offset is drift too, not a quirk of the driver.
constexpr double driftThreshold = 1.5e-3; // s
constexpr int driftWindows = 2;
// Older resamplers round down to whole frames per second.
constexpr double roundedDown = 0.02;
constexpr double maximumSteps = ClockSteering::maximumDeviation * framesPerSecond;

std::uint64_t nanosecondsOf(std::uint64_t frames) {
    return frames * 62'500 / 3;
}

/// Standard deviation of the line's slope.
double slopeDeviation(int windows) {
    const double n = windows;
    return jitter * std::sqrt(12 / (n * ((n * n) - 1)));
}

} // namespace

void ClockSteering::observe(const Stamp& stamp, std::int64_t framesBehind) {
    if (windowStart_ == 0 || stamp.nanoseconds < windowStart_ || stamp.clockId != clockId_) {
        // A new driver or a reset clock: start over.
        restart(stamp);
        return;
    }
    frames_ += stamp.lostFrames;
    excludeGap(stamp);
    const double passed =
        static_cast<double>(static_cast<std::int64_t>(stamp.nanoseconds - began_)) * 1e-9;
    surplusSum_ += passed - (static_cast<double>(frames_) / framesPerSecond);
    behindSum_ += static_cast<double>(framesBehind) / framesPerSecond;
    ++count_;
    frames_ += stamp.frames;
    next_ = stamp.nanoseconds + nanosecondsOf(stamp.frames);
    const auto elapsed = static_cast<std::int64_t>(stamp.nanoseconds - windowStart_);
    if (elapsed < window) {
        return;
    }
    const double offLine = learn(surplusSum_ / count_, static_cast<double>(elapsed) * 1e-9);
    const double behind = (behindSum_ / count_) - offLine;
    watch(behind);
    speedBefore_ = speed_;
    if (steering_) {
        steer(behind);
    }
    beginWindow(stamp.nanoseconds);
}

void ClockSteering::beginWindow(std::uint64_t nanoseconds) {
    windowStart_ = nanoseconds;
    behindSum_ = 0;
    surplusSum_ = 0;
    count_ = 0;
}

/// Excludes gaps (a missed cycle, a stopped clock), which are neither drift nor window time.
void ClockSteering::excludeGap(const Stamp& stamp) {
    const auto expected = next_ + nanosecondsOf(stamp.lostFrames);
    const auto gapLength = static_cast<std::int64_t>(stamp.nanoseconds - expected);
    if (std::abs(gapLength) > minimumGap) {
        began_ += static_cast<std::uint64_t>(gapLength);
        windowStart_ += static_cast<std::uint64_t>(gapLength);
    }
}

void ClockSteering::restart(const Stamp& stamp) {
    clockId_ = stamp.clockId;
    began_ = stamp.nanoseconds;
    next_ = stamp.nanoseconds + nanosecondsOf(stamp.frames);
    frames_ = stamp.frames;
    windows_ = 0;
    drift_ = 0;
    beginWindow(stamp.nanoseconds);
}

/// Returns how far the window's mean is off the line.
double ClockSteering::learn(double surplus, double windowSeconds) {
    const double speed = std::lerp(speedBefore_, speed_, shareInNextWindow);
    const double expected = surplus_ + ((drift_ - (speed - 1)) * windowSeconds);
    const double difference = surplus - expected;
    const bool isJump = std::abs(difference) > jump;
    jumps_ = isJump ? jumps_ + 1 : 0;
    if (windows_ == 0 || isJump) {
        // A well-known drift survives a jump or two; repeated jumps invalidate the line.
        if (windows_ <= minimumWindows || jumps_ > maximumJumps) {
            windows_ = 1;
            drift_ = 0;
        }
        surplus_ = surplus;
        return 0;
    }
    windows_ = std::min(windows_ + 1, maximumWindows);
    // Incremental least-squares line.
    const double n = windows_;
    const double share = n * (n + 1);
    surplus_ = expected + (difference * 2 * ((2 * n) - 1) / share);
    drift_ =
        std::clamp(drift_ + (difference * 6 / share / windowSeconds), -maximumDrift, maximumDrift);
    return surplus - surplus_;
}

void ClockSteering::watch(double secondsBehind) {
    windowsBehind_ = std::abs(secondsBehind) > driftThreshold ? windowsBehind_ + 1 : 0;
    const bool isSteep =
        windows_ >= minimumWindows &&
        std::abs(drift_) > std::max(steepDrift, certainty * slopeDeviation(windows_));
    steering_ = steering_ || isSteep || windowsBehind_ >= driftWindows;
}

void ClockSteering::steer(double secondsBehind) {
    const double known = windows_ >= minimumWindows ? drift_ : 0;
    const double deviation =
        std::clamp(known + (secondsBehind / correctionTime), -maximumDeviation, maximumDeviation);
    // Whole frames per second, as every resampler can do; the rest carries over. Never zero: a
    // resampler that returns to copying slips by up to a frame.
    const double wanted = carry_ + (framesPerSecond * deviation / (1 + deviation));
    const double steps =
        std::copysign(std::clamp(std::round(std::abs(wanted)), 1.0, maximumSteps), wanted);
    carry_ = std::clamp(wanted - steps, -1.0, 1.0);
    speed_ = framesPerSecond / (framesPerSecond - steps + roundedDown);
}

} // namespace vantoro::capture

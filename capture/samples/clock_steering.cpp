// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/samples/clock_steering.h"

#include <algorithm>
#include <cmath>

#include "capture/samples/frame_clock.h"

namespace vantoro::capture {

namespace {

constexpr std::int64_t window = 1'000'000'000; // ns
// What one piece's stamp is off the end of the piece before, from where on the two do not belong
// together.
constexpr std::int64_t slip = 5'000'000; // ns
constexpr int longestMemory = 15;        // windows
constexpr double correctionTime = 5;     // s
constexpr double maximumDrift = 8e-4;
// A mean that is off the line by more than this is a jump: no clock drifts like that.
constexpr double jump = 1e-3; // s
constexpr int mostJumps = 2;  // in a row
// How much of a speed that is asked for at a window's end shows in the next window's mean: it takes
// the resampler about half a second to reach it.
constexpr double reachedSoon = 0.15;
// A slope is a drift once trembling stamps hardly ever make one as steep, which make the means
// tremble by so much at most.
constexpr int fewestWindows = 3;
constexpr double tremble = 1.5e-4; // s
constexpr double certainty = 3;    // standard deviations
constexpr double steepDrift = 5e-5;
// From where on a difference is a drift, too, and not a driver's habit.
constexpr double driftThreshold = 1.5e-3; // s
constexpr int driftWindows = 2;
// Older resamplers know whole numbers of frames in a second only, and round down.
constexpr double roundedDown = 0.02;
constexpr double mostSteps = ClockSteering::maximumDeviation * framesPerSecond;

std::uint64_t nanosecondsOf(std::uint64_t frames) {
    return frames * 62'500 / 3;
}

/// The standard deviation of a line's slope.
double slopeTremble(int windows) {
    const double n = windows;
    return tremble * std::sqrt(12 / (n * ((n * n) - 1)));
}

} // namespace

void ClockSteering::observe(const Stamp& stamp, std::int64_t framesBehind) {
    if (windowStart_ == 0 || stamp.nanoseconds < windowStart_ || stamp.clockId != clockId_) {
        // Another driver, or one whose clock was set: nothing is known of it yet.
        beginAnew(stamp);
        return;
    }
    frames_ += stamp.lostFrames;
    leaveOutSlip(stamp);
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
    const double trembled = learn(surplusSum_ / count_, static_cast<double>(elapsed) * 1e-9);
    const double behind = (behindSum_ / count_) - trembled;
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

/// Where a cycle was missed, or the clock stood still, that is no drift, and no time of a window.
void ClockSteering::leaveOutSlip(const Stamp& stamp) {
    const auto expected = next_ + nanosecondsOf(stamp.lostFrames);
    const auto slipped = static_cast<std::int64_t>(stamp.nanoseconds - expected);
    if (std::abs(slipped) > slip) {
        began_ += static_cast<std::uint64_t>(slipped);
        windowStart_ += static_cast<std::uint64_t>(slipped);
    }
}

void ClockSteering::beginAnew(const Stamp& stamp) {
    clockId_ = stamp.clockId;
    began_ = stamp.nanoseconds;
    next_ = stamp.nanoseconds + nanosecondsOf(stamp.frames);
    frames_ = stamp.frames;
    windows_ = 0;
    drift_ = 0;
    beginWindow(stamp.nanoseconds);
}

/// Returns by how much the window's pieces were off the line.
double ClockSteering::learn(double surplus, double windowSeconds) {
    const double speed = std::lerp(speedBefore_, speed_, reachedSoon);
    const double expected = surplus_ + ((drift_ - (speed - 1)) * windowSeconds);
    const double difference = surplus - expected;
    const bool isJump = std::abs(difference) > jump;
    jumps_ = isJump ? jumps_ + 1 : 0;
    if (windows_ == 0 || isJump) {
        // A drift that is well known outlives a jump or two; what goes on to jump was no line.
        if (windows_ <= fewestWindows || jumps_ > mostJumps) {
            windows_ = 1;
            drift_ = 0;
        }
        surplus_ = surplus;
        return 0;
    }
    windows_ = std::min(windows_ + 1, longestMemory);
    // The line of least squares through so many points, when one is added to those before.
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
        windows_ >= fewestWindows &&
        std::abs(drift_) > std::max(steepDrift, certainty * slopeTremble(windows_));
    steering_ = steering_ || isSteep || windowsBehind_ >= driftWindows;
}

void ClockSteering::steer(double secondsBehind) {
    const double known = windows_ >= fewestWindows ? drift_ : 0;
    const double deviation =
        std::clamp(known + (secondsBehind / correctionTime), -maximumDeviation, maximumDeviation);
    // In whole frames of a second, so that every resampler does what is reckoned with; what that
    // leaves over comes with the next. Never none: a resampler that goes back to copying in
    // mid-sound slips by up to a frame.
    const double wanted = carry_ + (framesPerSecond * deviation / (1 + deviation));
    const double steps =
        std::copysign(std::clamp(std::round(std::abs(wanted)), 1.0, mostSteps), wanted);
    carry_ = std::clamp(wanted - steps, -1.0, 1.0);
    speed_ = framesPerSecond / (framesPerSecond - steps + roundedDown);
}

} // namespace vantoro::capture

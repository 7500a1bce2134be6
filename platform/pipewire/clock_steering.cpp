// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/clock_steering.h"

#include <algorithm>
#include <cmath>

#include "platform/pipewire/frame_clock.h"

namespace vantoro::pipewire {

namespace {

constexpr double timeConstant = 20; // s
constexpr double proportional = 2 / timeConstant;
constexpr double integral = 1 / (timeConstant * timeConstant);
constexpr std::uint64_t window = 1'000'000'000; // ns
constexpr std::uint64_t longestWindow = 2 * window;
constexpr double maximumDrift = 5e-4;
// From where on a difference is a drift, and not a driver's habit.
constexpr double driftThreshold = 2e-3; // s
constexpr int driftWindows = 3;
// A resampler that goes back to copying in mid-sound slips by up to a frame; between speeds it does
// not. Older ones copy at every speed nearer to 1 than this.
constexpr double smallestDeviation = 2.5e-5;
// Each change is a message to the server, and its resampler knows steps of 2e-5 at best.
constexpr double smallestChange = 1e-5;

} // namespace

void ClockSteering::observe(std::uint64_t nanoseconds, std::uint32_t clockId,
                            std::int64_t framesBehind) {
    if (windowStart_ == 0 || nanoseconds < windowStart_) {
        beginWindow(nanoseconds);
    }
    if (clockId != clockId_) {
        // Another driver: nothing is known of its clock yet.
        clockId_ = clockId;
        drift_ = 0;
        beginWindow(nanoseconds);
    }
    sum_ += static_cast<double>(framesBehind) / framesPerSecond;
    ++count_;
    const std::uint64_t elapsed = nanoseconds - windowStart_;
    if (elapsed >= window) {
        // After a pause of the stream the means say nothing about the time in between.
        watch(sum_ / count_);
        if (steering_) {
            steer(sum_ / count_, static_cast<double>(std::min(elapsed, longestWindow)) * 1e-9);
        }
        beginWindow(nanoseconds);
    }
}

void ClockSteering::beginWindow(std::uint64_t nanoseconds) {
    windowStart_ = nanoseconds;
    sum_ = 0;
    count_ = 0;
}

void ClockSteering::watch(double secondsBehind) {
    driftingWindows_ = std::abs(secondsBehind) > driftThreshold ? driftingWindows_ + 1 : 0;
    steering_ = steering_ || driftingWindows_ >= driftWindows;
}

void ClockSteering::steer(double secondsBehind, double windowSeconds) {
    const double wanted = (proportional * secondsBehind) + drift_;
    const double deviation = std::clamp(wanted, -maximumDeviation, maximumDeviation);
    if (wanted == deviation) {
        // Not while the limit holds: the integral would run away.
        drift_ = std::clamp(drift_ + (integral * secondsBehind * windowSeconds), -maximumDrift,
                            maximumDrift);
    }
    const double away = std::max(std::abs(deviation), smallestDeviation);
    const double speed = 1 + std::copysign(away, deviation);
    if (std::abs(speed - speed_) >= smallestChange) {
        speed_ = speed;
    }
}

} // namespace vantoro::pipewire

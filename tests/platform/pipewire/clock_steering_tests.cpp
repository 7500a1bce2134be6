// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/clock_steering.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "platform/pipewire/capture_timeline.h"

namespace vantoro::pipewire {

namespace {

/// A sound card with a clock of its own behind a resampler, as the capture sees it: cycles of 1024
/// of the card's frames, stamped with some tremble, delivered as whole frames at the asked speed.
class SimulatedStream {
public:
    explicit SimulatedStream(double drift) : drift_(drift) {}

    /// One cycle. Returns by how many seconds its place on the grid is off its true time.
    double cycle() {
        const double trueTime = time_;
        time_ += 1024 / (48000 * (1 + drift_));
        carry_ += 1024 * appliedSpeed();
        const auto frames = static_cast<std::uint32_t>(carry_);
        carry_ -= frames;
        const double tremble = trembling_(random_) * 1e-3;
        const Stamp stamp{.nanoseconds = static_cast<std::uint64_t>((trueTime + tremble) * 1e9),
                          .frames = frames,
                          .clockId = clockId_};
        // One sample stands for the piece's sound: nobody listens to these hours.
        const auto behind = timeline_.place(1, stamp, std::array{0.5F});
        steering_.observe(stamp.nanoseconds, stamp.clockId, behind);
        const double placed = static_cast<double>(gridPosition(stamp.nanoseconds) - behind) / 48000;
        jumps_ += expected_ != 0 && std::abs(placed - expected_) > 1e-9 ? 1 : 0;
        expected_ = placed + (static_cast<double>(frames) / 48000);
        timeline_.begin(gridPosition(stamp.nanoseconds)); // what came before need not be kept
        return std::abs(placed - trueTime);
    }

    void switchDriver(double drift) {
        drift_ = drift;
        ++clockId_;
        time_ += 0.001; // the other driver's cycles begin at other moments
    }

    void begin() {
        timeline_.begin(gridPosition(static_cast<std::uint64_t>(time_ * 1e9)) - 48);
        timeline_.addTap(1, CaptureSource::microphone, 0);
    }

    double time() const { return time_; }

    int jumps() const { return jumps_; }

    double speed() const { return steering_.speed(); }

private:
    /// PipeWire's older resamplers know whole numbers of input frames a second only; and a change
    /// of speed reaches them half a second later.
    double appliedSpeed() {
        if (time_ >= nextChange_) {
            applied_ = std::floor(48000 * steering_.speed()) / 48000;
            nextChange_ = time_ + 0.5;
        }
        return applied_;
    }

    double drift_;
    double time_ = 5000;
    double carry_ = 0;
    double applied_ = 1;
    double nextChange_ = 0;
    double expected_ = 0;
    int jumps_ = 0;
    std::uint32_t clockId_ = 40;
    std::minstd_rand random_{12345};
    std::uniform_real_distribution<> trembling_{-1, 1};
    CaptureTimeline timeline_;
    ClockSteering steering_;
};

class ClockDrift : public ::testing::TestWithParam<int> {};

TEST_P(ClockDrift, staysInStepForFourHoursWithoutAJump) {
    SimulatedStream stream(GetParam() * 1e-6);
    stream.begin();
    double largest = 0;
    while (stream.time() < 5000 + (4 * 3600)) {
        largest = std::max(largest, stream.cycle());
    }
    EXPECT_LT(largest, 0.005);
    EXPECT_EQ(stream.jumps(), 0);
}

INSTANTIATE_TEST_SUITE_P(Millionths, ClockDrift, ::testing::Values(-200, -50, 0, 7, 50, 200),
                         [](const auto& test) {
                             return (test.param < 0 ? "slowBy" : "fastBy") +
                                    std::to_string(std::abs(test.param));
                         });

TEST(ClockSteering, staysInStepWhenTheDriverChangesAgainAndAgain) {
    SimulatedStream stream(200e-6);
    stream.begin();
    double largest = 0;
    double drift = 200e-6;
    double nextSwitch = 5000 + 600;
    while (stream.time() < 5000 + (4 * 3600)) {
        if (stream.time() > nextSwitch) {
            drift = -drift;
            stream.switchDriver(drift);
            nextSwitch += 600;
        }
        largest = std::max(largest, stream.cycle());
    }
    EXPECT_LT(largest, 0.005);
    EXPECT_EQ(stream.jumps(), 0);
}

TEST(ClockSteering, leavesAClockThatDoesNotDriftAlone) {
    SimulatedStream stream(0);
    stream.begin();
    while (stream.time() < 5000 + 600) {
        stream.cycle();
        ASSERT_EQ(stream.speed(), 1);
    }
}

TEST(ClockSteering, neverAsksForASpeedThatCouldBeHeard) {
    ClockSteering steering;
    for (std::uint64_t second = 1; second < 100; ++second) {
        steering.observe(second * 1'000'000'000, 1, second % 60 < 30 ? 4800 : -4800);
        EXPECT_LE(std::abs(steering.speed() - 1), ClockSteering::maximumDeviation + 1e-12);
    }
}

TEST(ClockSteering, neverCopiesAgainOnceItSteers) {
    SimulatedStream stream(100e-6);
    stream.begin();
    while (stream.speed() == 1) {
        stream.cycle();
        ASSERT_LT(stream.time(), 5000 + 60);
    }
    while (stream.time() < 5000 + 600) {
        stream.cycle();
        ASSERT_GE(std::abs(stream.speed() - 1), 2.4e-5);
    }
}

} // namespace

} // namespace vantoro::pipewire

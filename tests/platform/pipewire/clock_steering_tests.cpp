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

/// One piece a second, from a stream that is so many frames behind.
class SteeredStream {
public:
    explicit SteeredStream(std::int64_t behind) { observe(behind); }

    void observe(std::int64_t behind) { steering_.observe(now_, clock_, behind); }

    double second(std::int64_t behind) {
        now_ += 1'000'000'000;
        observe(behind);
        return steering_.speed();
    }

    double seconds(int count, std::int64_t behind) {
        for (int i = 0; i < count; ++i) {
            second(behind);
        }
        return steering_.speed();
    }

    void pass(std::int64_t nanoseconds) { now_ += static_cast<std::uint64_t>(nanoseconds); }

    void switchDriver() { ++clock_; }

    double speed() const { return steering_.speed(); }

private:
    ClockSteering steering_;
    std::uint64_t now_ = 5'000'000'000;
    std::uint32_t clock_ = 0;
};

TEST(ClockSteering, setsInAfterThreeSecondsInARowOfMoreThanTwoMilliseconds) {
    SteeredStream drifting(97);
    EXPECT_EQ(drifting.seconds(2, 97), 1);
    EXPECT_GT(drifting.second(97), 1);

    SteeredStream steady(96);
    EXPECT_EQ(steady.seconds(20, 96), 1);

    SteeredStream trembling(240);
    for (int i = 0; i < 10; ++i) {
        trembling.seconds(2, 240);
        EXPECT_EQ(trembling.second(0), 1);
    }
}

TEST(ClockSteering, measuresOverAtLeastASecond) {
    SteeredStream stream(240);
    stream.seconds(2, 240);
    stream.pass(999'999'999);
    stream.observe(240);
    EXPECT_EQ(stream.speed(), 1);
    stream.pass(1);
    stream.observe(240);
    EXPECT_NEAR(stream.speed() - 1, 5e-4, 1e-12) << "of a mean of 5 ms";
}

TEST(ClockSteering, measuresEveryPieceOfASecondAlike) {
    SteeredStream stream(480);
    stream.observe(0); // of the same cycle
    EXPECT_EQ(stream.second(0), 1);
    stream.second(240);
    EXPECT_GT(stream.second(240), 1);
}

TEST(ClockSteering, isAtATenthOfTheDifferenceASecondAndLearnsTheDrift) {
    for (const int sign : {1, -1}) {
        SteeredStream stream(sign * 240);
        // 5 ms; a 400th of it is learned a second
        EXPECT_NEAR(sign * (stream.seconds(3, sign * 240) - 1), 5e-4, 1e-12);
        EXPECT_NEAR(sign * (stream.second(sign * 240) - 1), 5.125e-4, 1e-12);
        EXPECT_NEAR(sign * (stream.second(sign * 240) - 1), 5.25e-4, 1e-12);
        EXPECT_NEAR(sign * (stream.second(0) - 1), 3.75e-5, 1e-12);
    }
}

TEST(ClockSteering, learnsFromTwoSecondsOfAPauseAtMost) {
    SteeredStream stream(240);
    stream.seconds(3, 240);
    stream.pass(9'000'000'000);
    EXPECT_NEAR(stream.second(240) - 1, 5.125e-4, 1e-12);
    EXPECT_NEAR(stream.second(240) - 1, 5.375e-4, 1e-12);
}

TEST(ClockSteering, doesNotCopyAgainWhenNothingIsLeftToCorrect) {
    for (const int sign : {1, -1}) {
        SteeredStream stream(sign * 240);
        stream.seconds(3, sign * 240);
        EXPECT_NEAR(sign * (stream.second(0) - 1), 2.5e-5, 1e-12);
    }
}

TEST(ClockSteering, asksForNoChangeThatAResamplerWouldNotMake) {
    SteeredStream stream(120);
    EXPECT_NEAR(stream.seconds(3, 120) - 1, 2.5e-4, 1e-12);
    EXPECT_NEAR(stream.second(120) - 1, 2.5e-4, 1e-12) << "6 millionths more";
    EXPECT_NEAR(stream.second(120) - 1, 2.625e-4, 1e-12);
}

TEST(ClockSteering, learnsNoDriftThatNoClockHas) {
    for (const int sign : {1, -1}) {
        SteeredStream stream(sign * 120);
        EXPECT_NEAR(sign * (stream.seconds(300, sign * 120) - 1), 7.5e-4, 1e-5);
        EXPECT_NEAR(sign * (stream.second(0) - 1), 5e-4, 1e-12);
    }
}

TEST(ClockSteering, learnsNothingWhileItAsksForAllThatItMay) {
    SteeredStream stream(960);
    EXPECT_NEAR(stream.seconds(100, 960) - 1, 1e-3, 1e-12);
    EXPECT_NEAR(stream.second(0) - 1, 2.5e-5, 1e-12);
}

TEST(ClockSteering, knowsNothingOfAnotherDriversClock) {
    SteeredStream stream(240);
    stream.seconds(20, 240);
    stream.pass(500'000'000);
    stream.observe(240);
    stream.switchDriver();
    stream.observe(0);
    EXPECT_NEAR(stream.second(0) - 1, 2.5e-5, 1e-12);
    EXPECT_NEAR(stream.second(240) - 1, 5e-4, 1e-12);
}

TEST(ClockSteering, measuresAnewWhenADriversClockIsSetBack) {
    SteeredStream stream(240);
    stream.seconds(3, 240);
    stream.pass(-4'000'000'000);
    stream.observe(0);
    EXPECT_NEAR(stream.speed() - 1, 5e-4, 1e-12);
    EXPECT_NEAR(stream.second(0) - 1, 2.5e-5, 1e-12);
}

TEST(ClockSteering, neverAsksForASpeedThatCouldBeHeard) {
    ClockSteering steering;
    for (std::uint64_t second = 1; second < 100; ++second) {
        steering.observe(second * 1'000'000'000, 1, second % 60 < 30 ? 4800 : -4800);
        EXPECT_LE(std::abs(steering.speed() - 1), 1e-3 + 1e-12);
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

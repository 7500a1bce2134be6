// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/samples/clock_steering.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "capture/samples/capture_timeline.h"

namespace vantoro::testing {
namespace {

using namespace capture;

/// A sound card with its own clock behind a resampler: cycles of 1024 card frames, stamped with
/// some jitter, delivered as whole frames at the requested speed.
class SimulatedStream {
public:
    explicit SimulatedStream(double drift) : drift_(drift) {}

    /// One cycle. Returns by how many seconds its grid position is later than its true time.
    double cycle() {
        const double trueTime = time_;
        drift_ += wandering_ * (1024. / 48000);
        time_ += 1024 / (48000 * (1 + drift_));
        carry_ += 1024 * appliedSpeed();
        const auto frames = static_cast<std::uint32_t>(carry_);
        carry_ -= frames;
        const double jitter = noise_(random_) * jitter_;
        const Stamp stamp{.nanoseconds = static_cast<std::uint64_t>((trueTime + jitter) * 1e9),
                          .frames = frames,
                          .clockId = clockId_};
        // One sample represents the piece's sound: only its position matters.
        constexpr std::array sound{0.5F};
        const auto behind = timeline_.place(1, stamp, std::array{std::span<const float>(sound)});
        steering_.observe(stamp, behind);
        const double placed = static_cast<double>(gridPosition(stamp.nanoseconds) - behind) / 48000;
        jumps_ += expected_ != 0 && std::abs(placed - expected_) > 1e-9 ? 1 : 0;
        expected_ = placed + (static_cast<double>(frames) / 48000);
        timeline_.begin(gridPosition(stamp.nanoseconds)); // discard earlier sound
        return placed - trueTime;
    }

    void wander(double perMinute) { wandering_ = perMinute / 60; }

    void standStill(double seconds) { time_ += seconds; }

    void jitterBy(double seconds) { jitter_ = seconds; }

    void switchDriver(double drift) {
        drift_ = drift;
        ++clockId_;
        time_ += 0.001; // the other driver's cycles have another phase
    }

    void begin() {
        timeline_.begin(gridPosition(static_cast<std::uint64_t>(time_ * 1e9)) - 48);
        timeline_.addFeed(1, AudioLevelSource::microphone, 0);
    }

    double time() const { return time_; }

    int jumps() const { return jumps_; }

    double speed() const { return steering_.speed(); }

private:
    /// PipeWire's older resamplers take only whole numbers of input frames per second, and a new
    /// speed takes effect up to half a second later.
    double appliedSpeed() {
        if (time_ >= nextChange_) {
            applied_ = 48000 / std::floor(48000 / steering_.speed());
            nextChange_ = time_ + 0.5;
        }
        return applied_;
    }

    double drift_;
    double wandering_ = 0; // per second
    double jitter_ = 1e-3;
    double time_ = 5000;
    double carry_ = 0;
    double applied_ = 1;
    double nextChange_ = 0;
    double expected_ = 0;
    int jumps_ = 0;
    std::uint32_t clockId_ = 40;
    std::minstd_rand random_{12345};
    std::uniform_real_distribution<> noise_{-1, 1};
    CaptureTimeline timeline_;
    ClockSteering steering_;
};

class ClockDrift : public ::testing::TestWithParam<int> {};

TEST_P(ClockDrift, staysInStepForFourHoursWithoutAJump) {
    SimulatedStream stream(GetParam() * 1e-6);
    stream.begin();
    double largest = 0;
    while (stream.time() < 5000 + (4 * 3600)) {
        largest = std::max(largest, std::abs(stream.cycle()));
    }
    EXPECT_LT(largest, 0.005);
    EXPECT_EQ(stream.jumps(), 0);
}

INSTANTIATE_TEST_SUITE_P(Millionths, ClockDrift,
                         ::testing::Values(-500, -200, -50, 0, 7, 50, 200, 500),
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
        largest = std::max(largest, std::abs(stream.cycle()));
    }
    EXPECT_LT(largest, 0.005);
    EXPECT_EQ(stream.jumps(), 0);
}

TEST(ClockSteering, doesNotSteerAClockWithoutDrift) {
    SimulatedStream stream(0);
    stream.begin();
    while (stream.time() < 5000 + 600) {
        stream.cycle();
        ASSERT_EQ(stream.speed(), 1);
    }
}

/// Least-squares slope of a stream's offset over so many seconds.
double slopeOver(SimulatedStream& stream, double seconds) {
    const double begin = stream.time();
    double count = 0;
    double times = 0;
    double offs = 0;
    double squares = 0;
    double products = 0;
    while (stream.time() < begin + seconds) {
        const double time = stream.time() - begin;
        const double off = stream.cycle();
        ++count;
        times += time;
        offs += off;
        squares += time * time;
        products += time * off;
    }
    return ((count * products) - (times * offs)) / ((count * squares) - (times * times));
}

struct Clock {
    const char* name;
    double drift;
    double wanderingAMinute;
};

class ClockInStep : public ::testing::TestWithParam<Clock> {};

TEST_P(ClockInStep, isNeverFarOffAndSettlesWithinHalfAMinute) {
    SimulatedStream stream(GetParam().drift * 1e-6);
    stream.wander(GetParam().wanderingAMinute * 1e-6);
    stream.jitterBy(1e-4);
    stream.begin();
    double largest = 0;
    while (stream.time() < 5000 + 30) {
        largest = std::max(largest, std::abs(stream.cycle()));
    }
    EXPECT_LT(largest, 0.0025);
    EXPECT_LT(std::abs(slopeOver(stream, 30)), 5e-6);
    EXPECT_LT(std::abs(slopeOver(stream, 120)), 2e-6);
    EXPECT_EQ(stream.jumps(), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Clocks, ClockInStep,
    ::testing::Values(Clock{"fast", 500, 0}, Clock{"slow", -500, 0}, Clock{"slightlyFast", 100, 0},
                      Clock{"slightlySlow", -60, 0}, Clock{"fastAndFaster", 300, 50},
                      Clock{"slowAndFaster", -500, 50}, Clock{"fastAndSlower", 500, -50}),
    [](const auto& test) { return test.param.name; });

TEST(ClockSteering, keepsItsEstimateWhenTheClockStopsForTwoSeconds) {
    SimulatedStream stream(500e-6);
    stream.jitterBy(1e-4);
    stream.begin();
    while (stream.time() < 5000 + 40) {
        stream.cycle();
    }
    stream.standStill(2);
    double largest = 0;
    while (stream.time() < 5000 + 60) {
        largest = std::max(largest, std::abs(stream.cycle()));
    }
    EXPECT_LT(largest, 0.001);
    EXPECT_EQ(stream.jumps(), 1) << "across the stop of the clock";
}

/// One piece per second from a stream that is this many frames behind, whose device makes this many
/// extra frames per second, and whose resampler obeys.
class SteeredStream {
public:
    explicit SteeredStream(std::int64_t behind, std::int64_t surplus = 0) : surplus_(surplus) {
        observe(behind);
    }

    void observe(std::int64_t behind) {
        steering_.observe(
            {.nanoseconds = now_,
             .frames = static_cast<std::uint32_t>(48000 + surplus_ + std::llround(steps())),
             .clockId = clock_,
             .lostFrames = lost_},
            behind);
        lost_ = 0;
    }

    /// Returns how many fewer input frames per second the resampler is to take.
    double second(std::int64_t behind) {
        now_ += 1'000'000'000;
        observe(behind);
        return steps();
    }

    double seconds(int count, std::int64_t behind) {
        for (int i = 0; i < count; ++i) {
            second(behind);
        }
        return steps();
    }

    void pass(std::int64_t nanoseconds) { now_ += static_cast<std::uint64_t>(nanoseconds); }

    void lose(std::uint32_t frames) { lost_ = frames; }

    void switchDriver() { ++clock_; }

    double steps() const {
        return steering_.speed() == 1 ? 0 : 48000.02 - (48000 / steering_.speed());
    }

private:
    ClockSteering steering_;
    std::int64_t surplus_;
    std::uint64_t lost_ = 0;
    std::uint64_t now_ = 5'000'000'000;
    std::uint32_t clock_ = 0;
};

TEST(ClockSteering, startsAfterTwoSecondsInARowOfMoreThanOneAndAHalfMilliseconds) {
    SteeredStream drifting(73);
    EXPECT_EQ(drifting.second(73), 0);
    EXPECT_GT(drifting.second(73), 0);

    SteeredStream steady(71);
    EXPECT_EQ(steady.seconds(20, 71), 0);

    SteeredStream trembling(240);
    for (int i = 0; i < 10; ++i) {
        trembling.second(240);
        EXPECT_EQ(trembling.second(0), 0);
    }
}

TEST(ClockSteering, startsOnceASlopeExceedsTheJitter) {
    struct Case {
        std::int64_t framesMoreASecond;
        int seconds; // 0: never
    };

    for (const auto& [frames, seconds] :
         {Case{30, 3}, Case{24, 3}, Case{15, 4}, Case{12, 4}, Case{6, 6}, Case{5, 7}, Case{4, 8},
          Case{3, 9}, Case{2, 0}}) {
        for (const int sign : {1, -1}) {
            SteeredStream stream(0, sign * frames);
            for (int i = 1; i < 20; ++i) {
                const bool steers = seconds > 0 && i >= seconds;
                EXPECT_EQ(stream.second(0) != 0, steers) << sign * frames << " after " << i;
                if (steers) {
                    EXPECT_LT(sign * stream.steps(), 0);
                    break;
                }
            }
        }
    }
}

TEST(ClockSteering, requestsExactlyWhatADriftNeeds) {
    for (const int steps : {24, -24, 36, 38}) {
        SteeredStream stream(0, -steps); // this many too few, which the resampler must add
        EXPECT_EQ(std::round(stream.seconds(3, 0)), steps);
        EXPECT_NEAR(stream.seconds(60, 0), steps, 1);
    }
}

TEST(ClockSteering, measuresOverAtLeastASecond) {
    SteeredStream stream(240);
    stream.second(240);
    stream.pass(999'999'999);
    stream.observe(240);
    EXPECT_EQ(stream.steps(), 0);
    stream.pass(1);
    stream.observe(240);
    EXPECT_NE(stream.steps(), 0);
}

TEST(ClockSteering, correctsAnOffsetWithinFiveSeconds) {
    for (const int sign : {1, -1}) {
        SteeredStream stream(sign * 120); // 2.5 ms
        const double perSecond = 500e-6 * 48000;
        EXPECT_NEAR(sign * stream.seconds(2, sign * 120), perSecond, 0.6);
        // The rounding error carries over.
        double sum = 0;
        SteeredStream uneven(sign * 102); // 20.4 frames per second
        uneven.seconds(60, sign * 102);
        for (int i = 0; i < 10; ++i) {
            const double steps = uneven.second(sign * 102);
            EXPECT_NEAR(steps, std::round(steps), 1e-6);
            sum += steps;
        }
        EXPECT_NEAR(sign * sum, 204, 1.01);
    }
}

TEST(ClockSteering, doesNotCopyAgainWhenNothingIsLeftToCorrect) {
    SteeredStream stream(120);
    stream.seconds(2, 120);
    double sum = 0;
    for (int i = 0; i < 40; ++i) {
        const double steps = stream.second(0);
        EXPECT_NE(std::round(steps), 0);
        sum += i < 20 ? 0 : steps;
    }
    EXPECT_NEAR(sum, 0, 2.1) << "both ways equally often";
}

TEST(ClockSteering, neverRequestsAnAudibleSpeed) {
    for (const int sign : {1, -1}) {
        SteeredStream stream(sign * 4800, -sign * 70);
        for (int i = 0; i < 100; ++i) {
            EXPECT_LE(std::abs(stream.second(sign * 4800)), 48.1);
        }
        EXPECT_NEAR(sign * stream.steps(), 48, 0.1);
    }
}

TEST(ClockSteering, aKnownDriftSurvivesAJumpAndAPause) {
    SteeredStream stream(0, -24);
    stream.seconds(30, 0);
    for (const std::uint32_t frames : {480U, 96U}) { // more than time passed
        stream.lose(frames);
        EXPECT_NEAR(stream.second(0), 24, 1.1);
        EXPECT_NEAR(stream.second(0), 24, 1.1);
    }
    stream.pass(9'000'000'000);
    EXPECT_NEAR(stream.seconds(2, 0), 24, 1.1);
}

TEST(ClockSteering, repeatedJumpsDiscardTheEstimate) {
    SteeredStream stream(0, -24);
    stream.seconds(30, 0);
    for (const int left : {24, 24, 0}) {
        stream.lose(96);
        EXPECT_NEAR(stream.second(0), left, 1.1);
    }
}

TEST(ClockSteering, isNotMisledByAnIrregularStart) {
    SteeredStream stream(0, -24);
    stream.lose(40); // 0.8 ms, which looks like the opposite drift
    stream.seconds(9, 0);
    EXPECT_GT(stream.steps(), 0);
}

TEST(ClockSteering, startsOverWithAnotherDriversClock) {
    SteeredStream stream(0, -24);
    stream.seconds(20, 0);
    stream.switchDriver();
    stream.observe(0);
    EXPECT_LT(std::abs(stream.second(0)), 2);
}

TEST(ClockSteering, startsOverWhenADriversClockIsSetBack) {
    SteeredStream stream(0, -24);
    stream.seconds(20, 0);
    stream.pass(-4'000'000'000);
    stream.observe(0);
    EXPECT_NEAR(stream.steps(), 24, 1.1);
    EXPECT_LT(std::abs(stream.second(0)), 2);
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
        ASSERT_GE(std::abs(stream.speed() - 1), 2e-5);
    }
}

} // namespace
} // namespace vantoro::testing

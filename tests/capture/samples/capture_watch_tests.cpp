// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/samples/capture_watch.h"

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using namespace capture;

using Finding = CaptureWatch::Finding;
using Observation = CaptureWatch::Observation;

class CaptureWatchTest : public ::testing::Test {
protected:
    /// Updates `count` times, half a second apart; returns the last finding.
    Finding see(Observation sight, int count = 1) {
        Finding found = Finding::nothing;
        for (int i = 0; i < count && found == Finding::nothing; ++i) {
            now_ += 500'000'000;
            sight.monotonic = now_;
            sight.boottime = now_;
            found = watch_.update(sight);
            updates_ = i + 1;
        }
        return found;
    }

    int updates() const { return updates_; }

private:
    CaptureWatch watch_;
    std::uint64_t now_ = 1'000'000'000;
    int updates_ = 0;
};

TEST_F(CaptureWatchTest, aServerWhoseTapsGetNothingForTenSecondsIsSilent) {
    EXPECT_EQ(see({.tapCallbacks = 7}, 100), Finding::silentServer);
    EXPECT_EQ(updates(), 21);
}

TEST_F(CaptureWatchTest, whereThereIsNoOutputNothingIsMissed) {
    EXPECT_EQ(see({}, 100), Finding::nothing);
}

TEST_F(CaptureWatchTest, aMicrophoneThatGivesNothingForTenSecondsHasStalled) {
    EXPECT_EQ(see({.microphoneCallbacks = 7}, 100), Finding::stalledMicrophone);
    EXPECT_EQ(updates(), 21);
}

TEST_F(CaptureWatchTest, aMicrophoneThatIsPausedForThreeSecondsIsLost) {
    EXPECT_EQ(see({.microphoneCallbacks = 7, .isMicrophonePaused = true}, 100),
              Finding::lostMicrophone);
    EXPECT_EQ(updates(), 6);
}

TEST_F(CaptureWatchTest, aPauseThatEndsOrIsExpectedRestartsTheCount) {
    const Observation paused{.microphoneCallbacks = 7, .isMicrophonePaused = true};
    EXPECT_EQ(see(paused, 5), Finding::nothing);
    EXPECT_EQ(see({.microphoneCallbacks = 8}), Finding::nothing);
    EXPECT_EQ(see(paused, 5), Finding::nothing);
    EXPECT_EQ(see({.microphoneCallbacks = 9, .isMicrophonePaused = true, .isMicrophoneAway = true}),
              Finding::nothing);
    EXPECT_EQ(see(paused, 5), Finding::nothing);
    EXPECT_EQ(see({}), Finding::nothing) << "without a stream there is no pause";
    EXPECT_EQ(see(paused, 5), Finding::nothing);
    EXPECT_EQ(see(paused), Finding::lostMicrophone);
}

} // namespace
} // namespace vantoro::testing

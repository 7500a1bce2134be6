// SPDX-License-Identifier: GPL-3.0-or-later

#include <memory>

#include "tests/control/event_loop.h"
#include "tests/platform/desktop/power/power_fixture.h"
#include "tests/platform/desktop/power/slow_logind.h"

namespace vantoro::testing {
namespace {

class SlowLogindTest : public PowerManagementTest {
protected:
    SlowLogind logind{systemBus};
    std::unique_ptr<SleepHold> held;

    void SetUp() override {
        start();
        held = hold();
        ASSERT_TRUE(logind.isEventuallyAsked(1));
    }

    /// Afterwards everything that it had sent before has arrived.
    void awaitAnswer() {
        bool sleeping = false;
        const auto observation = power->observe([&] { sleeping = true; }, [] {});
        const auto another = hold();
        ASSERT_TRUE(logind.isEventuallyAsked(2)); // so the first is answered
        SlowLogind::prepareForSleep();
        ASSERT_TRUE(EventLoop::runUntil([&] { return sleeping; }));
    }
};

TEST_F(SlowLogindTest, lateLockTakesEffect) {
    logind.answer();
    awaitAnswer();
    EXPECT_TRUE(logind.isHeld());
    held.reset();
    EXPECT_TRUE(logind.isEventuallyReleased());
}

TEST_F(SlowLogindTest, lockGrantedAfterTheEndIsReleasedAtOnce) {
    held.reset();
    EXPECT_TRUE(logind.isHeld()); // as far as it knows
    logind.answer();
    EXPECT_TRUE(logind.isEventuallyReleased());
}

TEST_F(SlowLogindTest, lockGrantedAfterPowerManagementEndsIsReleased) {
    held.reset();
    power.reset();
    logind.answer();
    EXPECT_TRUE(logind.isEventuallyReleased());
}

TEST_F(SlowLogindTest, silenceKeepsNobodyWaiting) {
    std::unique_ptr<SleepHold> another;
    EXPECT_TRUE(isDoneAtOnce([&] {
        another = hold();
        QCoreApplication::processEvents();
        held.reset();
        another.reset();
        power.reset();
    }));
}

} // namespace
} // namespace vantoro::testing

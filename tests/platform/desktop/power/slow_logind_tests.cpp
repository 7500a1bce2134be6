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
        ASSERT_TRUE(logind.comesToBeAsked(1));
    }

    /// What it had sent before has reached us then.
    void awaitAnswer() {
        bool sleeping = false;
        const auto observation = power->observe([&] { sleeping = true; }, [] {});
        const auto another = hold();
        ASSERT_TRUE(logind.comesToBeAsked(2)); // so the first is answered
        SlowLogind::prepareForSleep();
        ASSERT_TRUE(EventLoop::runUntil([&] { return sleeping; }));
    }
};

TEST_F(SlowLogindTest, lateAnswerIsOfUse) {
    logind.answer();
    awaitAnswer();
    EXPECT_TRUE(logind.isHeld());
    held.reset();
    EXPECT_TRUE(logind.comesToBeGivenUp());
}

TEST_F(SlowLogindTest, answerAfterTheEndIsGivenUpAtOnce) {
    held.reset();
    EXPECT_TRUE(logind.isHeld()); // for all it knows
    logind.answer();
    EXPECT_TRUE(logind.comesToBeGivenUp());
}

TEST_F(SlowLogindTest, answerToNobodyIsGivenUpToo) {
    held.reset();
    power.reset();
    logind.answer();
    EXPECT_TRUE(logind.comesToBeGivenUp());
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

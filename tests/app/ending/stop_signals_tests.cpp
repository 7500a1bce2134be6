// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/ending/stop_signals.h"

#include <csignal>
#include <thread>

#include <gtest/gtest.h>
#include <unistd.h>

namespace vantoro::testing {
namespace {

using StopEvent = StopSignals::Event;

auto longAway() {
    return StopSignals::Clock::now() + std::chrono::seconds(30);
}

TEST(StopSignals, everySignalThatEndsAProgramIsAnEvent) {
    StopSignals signals;
    for (const auto& [number, event] :
         {std::pair{SIGINT, StopEvent::signal}, std::pair{SIGTERM, StopEvent::signal},
          std::pair{SIGHUP, StopEvent::hangUp}}) {
        ASSERT_EQ(::kill(::getpid(), number), 0);
        EXPECT_EQ(signals.wait(longAway()), event) << number;
    }
}

TEST(StopSignals, signalThatCameBeforeTheWaitIsNotLost) {
    StopSignals signals;
    std::thread([] { ::kill(::getpid(), SIGTERM); }).join();
    EXPECT_EQ(signals.wait(longAway()), StopEvent::signal);
}

TEST(StopSignals, wakeEndsTheWait) {
    StopSignals signals;
    std::thread waker([&] { signals.wake(); });
    EXPECT_EQ(signals.wait(std::nullopt), StopEvent::wake);
    waker.join();
}

TEST(StopSignals, deadlineEndsTheWaitAndNotBefore) {
    StopSignals signals;
    const auto deadline = StopSignals::Clock::now() + std::chrono::milliseconds(20);
    EXPECT_EQ(signals.wait(deadline), StopEvent::deadline);
    EXPECT_GE(StopSignals::Clock::now(), deadline);
    EXPECT_EQ(signals.wait(StopSignals::Clock::now() - std::chrono::seconds(1)),
              StopEvent::deadline);
}

TEST(StopSignals, ignoredHangUpStaysIgnored) {
    const auto previous = std::signal(SIGHUP, SIG_IGN);
    StopSignals signals;
    ASSERT_EQ(::kill(::getpid(), SIGHUP), 0);
    EXPECT_EQ(signals.wait(StopSignals::Clock::now()), StopEvent::deadline);
    std::signal(SIGHUP, previous);
}

} // namespace
} // namespace vantoro::testing

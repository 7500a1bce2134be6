// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/ending/stop_signals.h"

#include <csignal>
#include <thread>

#include <gtest/gtest.h>
#include <unistd.h>

namespace vantoro {
namespace {

using Event = StopSignals::Event;

auto longAway() {
    return StopSignals::Clock::now() + std::chrono::seconds(30);
}

TEST(StopSignals, everySignalThatEndsAProgramIsAnEvent) {
    StopSignals signals;
    for (const auto& [number, event] :
         {std::pair{SIGINT, Event::signal}, std::pair{SIGTERM, Event::signal},
          std::pair{SIGHUP, Event::hangUp}}) {
        ASSERT_EQ(::kill(::getpid(), number), 0);
        EXPECT_EQ(signals.wait(longAway()), event) << number;
    }
}

TEST(StopSignals, signalThatCameBeforeTheWaitIsNotLost) {
    StopSignals signals;
    std::thread([] { ::kill(::getpid(), SIGTERM); }).join();
    EXPECT_EQ(signals.wait(longAway()), Event::signal);
}

TEST(StopSignals, wakeEndsTheWait) {
    StopSignals signals;
    std::thread waker([&] { signals.wake(); });
    EXPECT_EQ(signals.wait(std::nullopt), Event::wake);
    waker.join();
}

TEST(StopSignals, deadlineEndsTheWaitAndNotBefore) {
    StopSignals signals;
    const auto deadline = StopSignals::Clock::now() + std::chrono::milliseconds(20);
    EXPECT_EQ(signals.wait(deadline), Event::deadline);
    EXPECT_GE(StopSignals::Clock::now(), deadline);
    EXPECT_EQ(signals.wait(StopSignals::Clock::now() - std::chrono::seconds(1)), Event::deadline);
}

TEST(StopSignals, ignoredHangUpStaysIgnored) {
    const auto previous = std::signal(SIGHUP, SIG_IGN);
    StopSignals signals;
    ASSERT_EQ(::kill(::getpid(), SIGHUP), 0);
    EXPECT_EQ(signals.wait(StopSignals::Clock::now()), Event::deadline);
    std::signal(SIGHUP, previous);
}

} // namespace
} // namespace vantoro

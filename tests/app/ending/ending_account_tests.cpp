// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/ending/ending_account.h"

#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using namespace std::chrono_literals;
using enum EndingStep;

/// What happens, and when, in milliseconds from the start.
struct Event {
    enum class What : std::uint8_t {
        handled,
        left,
        quitting,
        stays,
        hangUp,
        signal,
        progressed,
        saved,
        failed,
    };
    int at;
    What what;
};

using enum Event::What;

constexpr EndingAccount::TimePoint at(int milliseconds) {
    return EndingAccount::TimePoint(1h) + std::chrono::milliseconds(milliseconds);
}

void happen(EndingAccount& account, const Event& event) {
    switch (event.what) {
    case handled:
    case left:
        account.setHasHandler(event.what == handled);
        break;
    case quitting:
        account.recordRequest(EndingRequest::quitting, at(event.at));
        break;
    case stays:
        account.quittingCalledOff();
        break;
    case hangUp:
        account.recordRequest(EndingRequest::hangUp, at(event.at));
        break;
    case signal:
        account.recordRequest(EndingRequest::signal, at(event.at));
        break;
    case progressed:
        account.progressed(at(event.at));
        break;
    case saved:
    case failed:
        account.concluded(event.what == saved ? 0 : 1, at(event.at));
        break;
    }
}

struct Row {
    const char* name;
    std::vector<Event> events;
    int at;
    EndingStep step;
    int status = 1;
};

void expectRow(const Row& row) {
    SCOPED_TRACE(row.name);
    EndingAccount account;
    for (const auto& event : row.events) {
        happen(account, event);
    }
    EXPECT_EQ(account.step(at(row.at)), row.step);
    EXPECT_EQ(account.status(), row.status);
    // Looking again at the deadline, not before, is enough.
    const auto deadline = account.deadline();
    if (row.step == wait) {
        ASSERT_TRUE(deadline);
        EXPECT_GT(*deadline, at(row.at));
        EXPECT_EQ(account.step(*deadline - 1ns), wait);
        EXPECT_EQ(account.step(*deadline), endAtOnce);
    } else if (row.step == goOn) {
        EXPECT_EQ(deadline, std::nullopt);
        EXPECT_EQ(account.step(at(1'000'000'000)), goOn);
    }
}

TEST(EndingAccountTest, nothingEndsWithoutARequest) {
    for (const auto& row : {
             Row{"at the beginning", {}, 0, goOn},
             Row{"long ago", {}, 100'000, goOn},
             Row{"handler", {{0, handled}}, 100'000, goOn},
             Row{"progress", {{0, handled}, {10, progressed}}, 100'000, goOn},
             Row{"left", {{0, handled}, {5, left}}, 100'000, goOn},
         }) {
        expectRow(row);
    }
}

TEST(EndingAccountTest, firstRequestWaitsWhileThereIsProgress) {
    for (const auto& row : {
             Row{"signal", {{0, handled}, {50, signal}}, 50, wait},
             Row{"hang-up", {{0, handled}, {50, hangUp}}, 50, wait},
             Row{"quitting", {{0, handled}, {50, quitting}}, 50, wait},
             Row{"just in time", {{0, handled}, {50, signal}}, 4049, wait},
             Row{"no progress", {{0, handled}, {50, signal}}, 4050, endAtOnce},
             Row{"no progress after quitting", {{0, handled}, {50, quitting}}, 4050, endAtOnce},
             Row{"no progress after a hang-up", {{0, handled}, {50, hangUp}}, 4050, endAtOnce},
             Row{"progress", {{0, handled}, {50, signal}, {4000, progressed}}, 7999, wait},
             Row{"lasting progress",
                 {{0, handled},
                  {50, signal},
                  {4000, progressed},
                  {7900, progressed},
                  {11'000, progressed}},
                 14'999,
                 wait},
             Row{"no further progress",
                 {{0, handled}, {50, signal}, {4000, progressed}},
                 8000,
                 endAtOnce},
             Row{"earlier progress does not count",
                 {{0, handled}, {10, progressed}, {60'000, signal}},
                 63'999,
                 wait},
         }) {
        expectRow(row);
    }
}

TEST(EndingAccountTest, secondSignalEndsAtOnceUnlessItIsTheSameRequest) {
    for (const auto& row : {
             Row{"again", {{0, handled}, {50, signal}, {250, signal}}, 250, endAtOnce},
             Row{"again, despite progress",
                 {{0, handled}, {50, signal}, {250, signal}, {251, progressed}},
                 252,
                 endAtOnce},
             Row{"forwarded too", {{0, handled}, {50, signal}, {249, signal}}, 250, wait},
             Row{"forwarded, then again",
                 {{0, handled}, {50, signal}, {90, signal}, {300, signal}},
                 300,
                 endAtOnce},
             Row{"a closing terminal signals repeatedly",
                 {{0, handled}, {50, hangUp}, {60, hangUp}, {900, hangUp}},
                 1000,
                 wait},
             Row{"a session that ends after its terminal",
                 {{0, handled}, {50, hangUp}, {900, signal}},
                 1000,
                 wait},
             Row{"hung up after a signal", {{0, handled}, {50, signal}, {900, hangUp}}, 1000, wait},
             Row{"quitting again", {{0, handled}, {50, quitting}, {900, quitting}}, 1000, wait},
             Row{"a signal after quitting",
                 {{0, handled}, {50, quitting}, {900, signal}},
                 1000,
                 wait},
             Row{"two signals after quitting",
                 {{0, handled}, {50, quitting}, {900, signal}, {1500, signal}},
                 1500,
                 endAtOnce},
         }) {
        expectRow(row);
    }
}

TEST(EndingAccountTest, repeatedRequestsDoNotPostponeTheEnd) {
    expectRow({"quitting", {{0, handled}, {0, quitting}, {3000, quitting}}, 4000, endAtOnce});
    expectRow({"signal", {{0, handled}, {0, quitting}, {3000, signal}}, 4000, endAtOnce});
    expectRow({"hang-up", {{0, handled}, {0, hangUp}, {3000, hangUp}}, 4000, endAtOnce});
}

TEST(EndingAccountTest, quittingCanBeCancelledAndASignalCannot) {
    for (const auto& row : {
             Row{"cancelled", {{0, handled}, {0, quitting}, {10, stays}}, 100'000, goOn},
             Row{"requested again",
                 {{0, handled}, {0, quitting}, {10, stays}, {20'000, quitting}},
                 20'001,
                 wait},
             Row{"signalled meanwhile",
                 {{0, handled}, {0, quitting}, {5, signal}, {10, stays}},
                 3999,
                 wait},
         }) {
        expectRow(row);
    }
}

TEST(EndingAccountTest, withoutAHandlerASignalEndsAtOnce) {
    for (const auto& row : {
             Row{"signal", {{0, signal}}, 0, endAtOnce},
             Row{"hang-up", {{0, hangUp}}, 0, endAtOnce},
             Row{"handler gone", {{0, handled}, {1, left}, {5, signal}}, 5, endAtOnce},
             Row{"requested while there was a handler",
                 {{0, handled}, {1, signal}, {5, left}},
                 4000,
                 wait},
         }) {
        expectRow(row);
    }
}

TEST(EndingAccountTest, threadsAfterTheWorkGetTheSameTimeLimit) {
    for (const auto& row : {
             Row{"unrequested", {{0, handled}, {9, saved}, {9, left}}, 4008, wait, 0},
             Row{"unrequested, for too long", {{0, handled}, {9, saved}}, 4009, endAtOnce, 0},
             Row{"requested",
                 {{0, handled}, {1, signal}, {3000, saved}, {3000, left}},
                 6999,
                 wait,
                 0},
             Row{"requested afterwards",
                 {{0, handled}, {9, saved}, {9, left}, {3000, signal}},
                 4008,
                 wait,
                 0},
             Row{"requested twice",
                 {{0, handled}, {1, signal}, {9, saved}, {900, signal}},
                 900,
                 endAtOnce,
                 0},
             Row{"failed", {{0, handled}, {9, failed}}, 4009, endAtOnce, 1},
         }) {
        expectRow(row);
    }
}

TEST(EndingAccountTest, reportsOnlyTheFirstSignal) {
    EndingAccount account;
    account.setHasHandler(true);
    EXPECT_FALSE(account.recordRequest(EndingRequest::quitting, at(0))); // the handler knows
    EXPECT_TRUE(account.recordRequest(EndingRequest::hangUp, at(1)));
    EXPECT_FALSE(account.recordRequest(EndingRequest::signal, at(2)));
    EXPECT_FALSE(account.recordRequest(EndingRequest::hangUp, at(3)));
    EXPECT_FALSE(account.isImpatient());
    account.recordRequest(EndingRequest::signal, at(300));
    EXPECT_TRUE(account.isImpatient());
}

} // namespace
} // namespace vantoro::testing

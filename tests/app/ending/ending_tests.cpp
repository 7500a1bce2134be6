// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/ending/ending.h"

#include <chrono>
#include <csignal>
#include <future>
#include <string>
#include <utility>

#include <gtest/gtest.h>
#include <unistd.h>

namespace vantoro::testing {
namespace {

using namespace std::chrono_literals;

constexpr auto deadline = 20s; // far longer than needed

class EndingTest : public ::testing::Test {
protected:
    using End = std::pair<int, std::string>;

    StopSignals signals; // before any thread starts
    std::promise<End> ended;
    std::promise<void> asked;
    std::future<End> end = ended.get_future();
    Ending ending{signals,
                  [this](int status, const std::string& text) { ended.set_value({status, text}); }};

    /// Signals until the program ends, like an impatient user, at intervals that count as new
    /// requests.
    void signalUntilEnd() {
        do {
            ::kill(::getpid(), SIGINT);
        } while (end.wait_for(EndingAccount::sameRequest) != std::future_status::ready);
    }

    template <class Future>
    static bool arrives(Future& future) {
        return future.wait_for(deadline) == std::future_status::ready;
    }
};

TEST_F(EndingTest, signalIsPassedToTheHandler) {
    const Ending::Handler handler(ending, [this] { asked.set_value(); });
    ::kill(::getpid(), SIGTERM);
    auto told = asked.get_future();
    EXPECT_TRUE(arrives(told));
    EXPECT_EQ(end.wait_for(0s), std::future_status::timeout);
}

TEST_F(EndingTest, signalEndsTheProcessWithoutAHandler) {
    {
        const Ending::Handler handler(ending, [] {});
    }
    ::kill(::getpid(), SIGTERM);
    ASSERT_TRUE(arrives(end));
    EXPECT_EQ(end.get(), (End{1, ""}));
}

TEST_F(EndingTest, repeatedSignalsEndTheProcessAndSayWhatIsKept) {
    const Ending::Handler handler(ending, [] {});
    ending.progressed({.state = RecordingState::Case::processing,
                       .folder = "/recordings",
                       .language = AppLanguage::english});
    signalUntilEnd();
    EXPECT_EQ(end.get(),
              (End{1, "Vantoro ended before the recording was finished. What has reached the disk "
                      "is kept in a temporary file in /recordings. Open Vantoro again, or run "
                      "vantoro recover, to finish it."}));
}

TEST_F(EndingTest, quittingWithoutProgressEndsAndSaysWhatWasWaitedFor) {
    const Ending::Handler handler(ending, [] {});
    ending.progressed({.state = RecordingState::Case::preparing,
                       .folder = "/recordings",
                       .language = AppLanguage::english});
    ending.userQuits();
    ASSERT_TRUE(arrives(end));
    const auto [status, text] = end.get();
    EXPECT_EQ(status, 1);
    EXPECT_TRUE(text.starts_with("The recording could not begin in time: the folder /recordings, "
                                 "the sound server or the desktop does not answer."))
        << text;
}

TEST_F(EndingTest, hangAfterTheWorkEndsWithItsStatus) {
    ending.concluded(0);
    ASSERT_TRUE(arrives(end));
    EXPECT_EQ(end.get().first, 0);
}

TEST(LeaveProcessTest, saysWhyAndEndsWithTheStatus) {
    EXPECT_EXIT(Ending::leaveProcess(1, "The disk is gone."), ::testing::ExitedWithCode(1),
                "^The disk is gone\\.\n$");
}

} // namespace
} // namespace vantoro::testing

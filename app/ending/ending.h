// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <functional>
#include <mutex>
#include <stop_token>
#include <string>
#include <thread>

#include "app/ending/ending_account.h"
#include "app/ending/stop_signals.h"
#include "control/recording_state.h"
#include "l10n/app_language.h"

namespace vantoro {

/// What the program has in work, for what it says when it ends in the middle of that.
struct EndingScene {
    RecordingState::Case state = RecordingState::Case::idle;
    std::filesystem::path folder; ///< of the recordings; empty where nothing is said
    AppLanguage language = AppLanguage::english;
};

/// Takes the signals that end the program, hands them on, and ends the process itself where what is
/// under way does not move any more (`EndingAccount`). It has a thread of its own, since any other
/// may be one that hangs.
///
/// Lives as long as the program does anything. Any thread, but for the constructor and destructor.
class Ending {
public:
    using EndAtOnce = std::function<void(int status, const std::string& text)>;

    /// `signals` outlives it. `endAtOnce` does not return, but in tests.
    explicit Ending(StopSignals& signals, EndAtOnce endAtOnce = leaveProcess);
    Ending(const Ending&) = delete;
    Ending& operator=(const Ending&) = delete;
    ~Ending();

    /// While it lives, a signal does not end the process, but calls `asked`, once, on a thread of
    /// the Ending's; not after it.
    class Attendance {
    public:
        Attendance(Ending& ending, std::function<void()> asked);
        Attendance(const Attendance&) = delete;
        Attendance& operator=(const Attendance&) = delete;
        ~Attendance();

    private:
        Ending& ending_;
    };

    void userQuits();
    void userStays();

    /// What is under way has come a step further.
    void moved();
    void moved(EndingScene scene);

    /// The program's work is done, with this status: only what still runs is waited for, and no
    /// longer than for anything else.
    void concluded(int status);

    /// Says the text on standard error, if that takes it at once, and ends the process without
    /// waiting for any thread. Nothing waits in the standard streams: whatever is printed is
    /// flushed at once.
    [[noreturn]] static void leaveProcess(int status, const std::string& text);

private:
    void watch(const std::stop_token& stop);
    void attend(std::function<void()> asked);
    void signalCame(EndingRequest request);
    void endIfDue();

    StopSignals& signals_;
    EndAtOnce endAtOnce_;
    std::mutex askedMutex_;
    std::function<void()> asked_; // guarded by askedMutex_
    std::mutex mutex_;            // guards all below but the thread
    EndingAccount account_;
    EndingScene scene_;
    bool hasEnded_ = false;
    std::jthread watcher_; // last: it uses the above
};

} // namespace vantoro

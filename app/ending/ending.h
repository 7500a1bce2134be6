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

/// The work in progress, for the message if the program ends without finishing it.
struct EndingScene {
    RecordingState::Case state = RecordingState::Case::idle;
    std::filesystem::path folder; ///< of the recordings; if empty, no message is printed
    AppLanguage language = AppLanguage::english;
};

/// Passes on the signals that end the program, and ends the process itself once the work makes no
/// progress (`EndingAccount`), on its own thread, since any other may hang. Must outlive all other
/// work. Any thread, except the constructor and destructor.
class Ending {
public:
    using EndAtOnce = std::function<void(int status, const std::string& text)>;

    /// `signals` must outlive this. `endAtOnce` must not return, except in tests.
    explicit Ending(StopSignals& signals, EndAtOnce endAtOnce = leaveProcess);
    Ending(const Ending&) = delete;
    Ending& operator=(const Ending&) = delete;
    ~Ending();

    /// While it exists, a signal does not end the process but calls `asked`, once, on a thread of
    /// the Ending. Not called after destruction.
    class Handler {
    public:
        Handler(Ending& ending, std::function<void()> asked);
        Handler(const Handler&) = delete;
        Handler& operator=(const Handler&) = delete;
        ~Handler();

    private:
        Ending& ending_;
    };

    void userQuits();
    void userStays();

    /// The work in progress made progress.
    void progressed();
    void progressed(EndingScene scene);

    /// The work is done, with this exit status. Threads still running get the usual time to end.
    void concluded(int status);

    /// Writes the text to standard error, unless that would block, and ends the process without
    /// joining any thread. Loses no output: everything printed is flushed at once.
    [[noreturn]] static void leaveProcess(int status, const std::string& text);

private:
    void watch(const std::stop_token& stop);
    void setHandler(std::function<void()> asked);
    void handleSignal(EndingRequest request);
    void endIfDue();

    StopSignals& signals_;
    EndAtOnce endAtOnce_;
    std::mutex askedMutex_;
    std::function<void()> asked_; // guarded by askedMutex_
    std::mutex mutex_;            // guards all below except the thread
    EndingAccount account_;
    EndingScene scene_;
    bool hasEnded_ = false;
    std::jthread watcher_; // last, because it uses the members above
};

} // namespace vantoro

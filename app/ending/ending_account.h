// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace vantoro {

/// How the program is asked to end.
enum class EndingRequest : std::uint8_t {
    quitting, ///< the user quits the window; doing so again changes nothing
    hangUp,   ///< the terminal is gone, which is told several times: never somebody's impatience
    signal,   ///< SIGINT or SIGTERM
};

/// What is done about the program's end.
enum class EndingStep : std::uint8_t {
    goOn,      ///< nobody has asked for it
    wait,      ///< what is under way comes to its end in order
    endAtOnce, ///< nothing is waited for any longer
};

/// Decides when the program ends though something in it has not come to its end: a start or a
/// saving that hangs, as with a disk that is gone, cannot be interrupted. Every time is handed in.
/// Any thread, but one at a time.
class EndingAccount {
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    /// For how long nothing may move once the end was asked for: less than the five seconds after
    /// which people, and those who end sessions, take a program for dead.
    static constexpr std::chrono::milliseconds longestStandstill{4000};
    /// Signals that come so shortly after the first one are the same wish: what runs the program
    /// may pass on what the terminal has sent it as well.
    static constexpr std::chrono::milliseconds sameWish{200};

    /// Whether somebody sees to it that what is under way ends in order when that is asked for. At
    /// first nobody does, and there is nothing to be ended in order.
    void setAttended(bool isAttended) { isAttended_ = isAttended; }

    /// Returns whether whoever attends is to be told: of the first that is not the user's quitting,
    /// which they know of.
    bool asked(EndingRequest request, TimePoint now);

    /// The user stays, since a recording could not be saved. A signal is not called off.
    void quittingCalledOff() { isQuitting_ = false; }

    /// A recording has come a step further, or a part of a file was made.
    void moved(TimePoint now) { lastMove_ = now; }

    /// The work is done; what still runs is being ended.
    void concluded(int status, TimePoint now);

    EndingStep step(TimePoint now) const;

    /// When `step` says something else, though nothing happens until then.
    std::optional<TimePoint> deadline() const;

    /// Whether the end was asked for again.
    bool isImpatient() const { return isImpatient_; }

    /// The program's, when it ends now.
    int status() const { return status_.value_or(1); }

private:
    bool isAsked() const { return isQuitting_ || isSignalled_; }

    bool isAttended_ = false;
    bool isQuitting_ = false;
    bool isSignalled_ = false; // or hung up
    bool isUnheard_ = false;   // asked for when nobody attended
    bool isImpatient_ = false;
    std::optional<TimePoint> firstSignal_; // SIGINT or SIGTERM
    TimePoint lastMove_;                   // the request, or what moved since
    std::optional<int> status_;            // once it is concluded
};

} // namespace vantoro

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace vantoro {

/// Who asks the program to end.
enum class EndingRequest : std::uint8_t {
    quitting, ///< the user quits the window; repeating it changes nothing
    hangUp,   ///< the terminal closed; arrives several times, so a repetition means nothing
    signal,   ///< SIGINT or SIGTERM
};

/// What the program does about a request to end.
enum class EndingStep : std::uint8_t {
    goOn,      ///< nothing was requested
    wait,      ///< finish the work in progress
    endAtOnce, ///< do not wait any longer
};

/// Decides when to end a program whose work hangs, as on a lost disk. One thread at a time.
class EndingAccount {
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    /// Without progress after a request. Users and session managers give up after five seconds.
    static constexpr std::chrono::milliseconds longestStandstill{4000};
    /// Signals this close count as one: a parent may forward the one that the terminal sends, too.
    static constexpr std::chrono::milliseconds sameRequest{200};

    /// Whether a handler finishes the work in progress on request. Initially none does.
    void setHasHandler(bool hasHandler) { hasHandler_ = hasHandler; }

    /// Records a request. Returns whether to notify the handler: for the first request other than
    /// quitting, which comes from the handler itself.
    bool recordRequest(EndingRequest request, TimePoint now);

    /// The user stays because a recording could not be saved. Does not cancel a signal.
    void quittingCalledOff() { isQuitting_ = false; }

    /// A recording moved on to its next stage, or part of a file was written.
    void progressed(TimePoint now) { lastProgress_ = now; }

    /// The work is done; remaining threads are ending.
    void concluded(int status, TimePoint now);

    EndingStep step(TimePoint now) const;

    /// When `step` changes by itself; none if only an event can change it.
    std::optional<TimePoint> deadline() const;

    /// Whether the end was requested again.
    bool isImpatient() const { return isImpatient_; }

    /// The exit status if the program ends now.
    int status() const { return status_.value_or(1); }

private:
    bool isRequested() const { return isQuitting_ || isSignalled_; }

    bool hasHandler_ = false;
    bool isQuitting_ = false;
    bool isSignalled_ = false; // or hung up
    bool isUnhandled_ = false; // requested while there was no handler
    bool isImpatient_ = false;
    std::optional<TimePoint> firstSignal_; // SIGINT or SIGTERM
    TimePoint lastProgress_;               // of the request, or the latest progress since
    std::optional<int> status_;            // set by `concluded`
};

} // namespace vantoro

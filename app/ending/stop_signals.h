// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace vantoro {

/// The signals that end a recording (SIGINT, SIGTERM, and SIGHUP unless it is ignored as by nohup),
/// as something to wait for.
///
/// Constructed before any thread is started, since it blocks those signals in its own thread and in
/// all that come from it. Throws std::system_error.
class StopSignals {
public:
    enum class Event : std::uint8_t {
        signal, ///< SIGINT or SIGTERM
        hangUp, ///< SIGHUP
        wake,
        deadline,
    };
    using Clock = std::chrono::steady_clock;

    StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;
    ~StopSignals();

    /// Returns at the first signal that was not yet waited for, else at a `wake`, else at the
    /// deadline (never, when there is none).
    Event wait(std::optional<Clock::time_point> deadline);

    /// Ends the wait in progress, or the next one. Any thread.
    void wake() noexcept;

    /// Can be read from, and must not be, while a signal was not yet waited for.
    int descriptor() const noexcept { return signals_; }

private:
    std::optional<Event> take() noexcept;

    int signals_ = -1;
    int wakes_ = -1;
};

} // namespace vantoro

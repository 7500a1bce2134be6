// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace vantoro {

/// Waits for SIGINT, SIGTERM, and SIGHUP unless it is ignored, as under nohup. Construct before any
/// thread starts: it blocks these signals in this thread and later ones. Throws std::system_error.
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

    /// Returns the first pending signal, else at a `wake`, else at the deadline, if any.
    Event wait(std::optional<Clock::time_point> deadline);

    /// Ends the current wait, or the next one. Any thread.
    void wake() noexcept;

    /// Readable while a signal is pending; poll it, do not read it.
    int descriptor() const noexcept { return signals_; }

private:
    std::optional<Event> take() noexcept;

    int signals_ = -1;
    int wakes_ = -1;
};

} // namespace vantoro

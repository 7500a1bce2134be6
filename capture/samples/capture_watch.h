// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>

namespace vantoro::capture {

/// Detects that a stream's callbacks have stopped, the only sign of a sound server that hangs. Time
/// in which the machine or this process was suspended does not count.
class StallWatch {
public:
    static constexpr std::uint64_t limit = 10'000'000'000; // ns

    /// Call about twice a second. True if no callback came within the limit.
    bool update(std::uint64_t callbacks, std::uint64_t monotonic, std::uint64_t boottime) noexcept {
        const bool first = monotonic_ == 0;
        const bool suspended = boottime - monotonic > sleep_ + longestStep / 2;
        const std::uint64_t elapsed = std::min(monotonic - monotonic_, longestStep);
        idle_ = first || suspended || callbacks != callbacks_ ? 0 : idle_ + elapsed;
        callbacks_ = callbacks;
        monotonic_ = monotonic;
        sleep_ = boottime - monotonic; // total time suspended
        return idle_ >= limit;
    }

private:
    // A longer step between two updates means that our process did not run.
    static constexpr std::uint64_t longestStep = 1'000'000'000;

    std::uint64_t callbacks_ = 0;
    std::uint64_t monotonic_ = 0;
    std::uint64_t sleep_ = 0;
    std::uint64_t idle_ = 0;
};

/// Detects streams that should run but have stopped for good.
class CaptureWatch {
public:
    enum class Finding : std::uint8_t { nothing, silentServer, stalledMicrophone, lostMicrophone };

    /// Observed about twice a second.
    struct Observation {
        std::optional<std::uint64_t> tapCallbacks{};        ///< of all taps; absent without taps
        std::optional<std::uint64_t> microphoneCallbacks{}; ///< absent without a stream
        bool isMicrophonePaused = false;
        bool isMicrophoneAway = false; ///< but expected back
        std::uint64_t monotonic = 0;   ///< ns
        std::uint64_t boottime = 0;    ///< ns
    };

    Finding update(const Observation& observation) noexcept {
        // Without any output there is nothing to hear.
        const bool areTapsStalled = taps_.update(observation.tapCallbacks.value_or(0),
                                                 observation.monotonic, observation.boottime);
        if (areTapsStalled && observation.tapCallbacks) {
            return Finding::silentServer;
        }
        if (!observation.microphoneCallbacks) {
            pausedFor_ = 0;
            return Finding::nothing;
        }
        if (microphone_.update(*observation.microphoneCallbacks, observation.monotonic,
                               observation.boottime)) {
            return Finding::stalledMicrophone;
        }
        // A source may pause briefly while its links are rebuilt.
        pausedFor_ =
            observation.isMicrophonePaused && !observation.isMicrophoneAway ? pausedFor_ + 1 : 0;
        return pausedFor_ >= longestPause ? Finding::lostMicrophone : Finding::nothing;
    }

private:
    static constexpr int longestPause = 6;

    StallWatch taps_;
    StallWatch microphone_;
    int pausedFor_ = 0; // updates
};

} // namespace vantoro::capture

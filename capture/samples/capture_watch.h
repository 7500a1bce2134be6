// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <optional>

#include "capture/samples/stall_watch.h"

namespace vantoro::capture {

/// Detects streams that should run but have stopped for good.
class CaptureWatch {
public:
    enum class Finding : std::uint8_t { nothing, silentServer, stalledMicrophone, lostMicrophone };

    /// Observed about twice a second.
    struct Observation {
        std::optional<std::uint64_t> tapCallbacks =
            std::nullopt; ///< of all taps; absent without taps
        std::optional<std::uint64_t> microphoneCallbacks =
            std::nullopt; ///< absent without a stream
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

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <optional>

#include "capture/samples/stall_watch.h"

namespace vantoro::capture {

/// Tells from outside when streams that should run have stopped for good.
class CaptureWatch {
public:
    enum class Finding : std::uint8_t { nothing, silentServer, stalledMicrophone, lostMicrophone };

    /// What is seen about twice a second.
    struct Sight {
        std::optional<std::uint64_t> tapCallbacks =
            std::nullopt; ///< of all taps; absent where there is none
        std::optional<std::uint64_t> microphoneCallbacks =
            std::nullopt; ///< absent while it has no stream
        bool isMicrophonePaused = false;
        bool isMicrophoneAway = false; ///< and waited for
        std::uint64_t monotonic = 0;   ///< ns
        std::uint64_t boottime = 0;    ///< ns
    };

    Finding update(const Sight& sight) noexcept {
        // With no output in the machine there is nothing to hear from.
        const bool areTapsStalled =
            taps_.update(sight.tapCallbacks.value_or(0), sight.monotonic, sight.boottime);
        if (areTapsStalled && sight.tapCallbacks) {
            return Finding::silentServer;
        }
        if (!sight.microphoneCallbacks) {
            pausedFor_ = 0;
            return Finding::nothing;
        }
        if (microphone_.update(*sight.microphoneCallbacks, sight.monotonic, sight.boottime)) {
            return Finding::stalledMicrophone;
        }
        // A source that is still there may pause for a moment while links are made anew.
        pausedFor_ = sight.isMicrophonePaused && !sight.isMicrophoneAway ? pausedFor_ + 1 : 0;
        return pausedFor_ >= longestPause ? Finding::lostMicrophone : Finding::nothing;
    }

private:
    static constexpr int longestPause = 6;

    StallWatch taps_;
    StallWatch microphone_;
    int pausedFor_ = 0; // updates
};

} // namespace vantoro::capture

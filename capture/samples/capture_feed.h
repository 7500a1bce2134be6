// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>

#include "capture/samples/capture_timeline.h"
#include "capture/samples/stamped_ring.h"

namespace vantoro::capture {

/// What one capture stream shares between the real-time thread that fills it, the capture queue
/// that empties it, and the loop that looks after it.
struct CaptureFeed {
    /// For how long the capture queue may stand still before sound is lost. As long as it does not,
    /// this costs addresses, and no memory.
    static constexpr std::chrono::seconds usualLength{30};
    /// What is at hand before sound comes: twice as much as ever waits while all goes well. Of a
    /// longer standstill each cycle asks the kernel for a page or two, some microseconds of the 21
    /// milliseconds that it has; what waits for us then is our own node, and nobody's sound.
    static constexpr std::chrono::seconds lengthAtHand{1};

    explicit CaptureFeed(AudioLevelSource which, std::chrono::seconds length = usualLength)
        : ring(which == AudioLevelSource::systemAudio ? 2 : 1,
               static_cast<std::size_t>(length.count() * framesPerSecond), 65536,
               static_cast<std::size_t>(std::min(length, lengthAtHand).count() * framesPerSecond)),
          source(which) {}

    StampedRing ring;
    /// Callbacks so far. Real-time thread to loop.
    std::atomic<std::uint64_t> callbacks{0};
    /// The first piece's stamp; 0: none yet. Real-time thread to loop.
    std::atomic<std::uint64_t> heardSince{0};
    /// How fast the resampler should run (see `ClockSteering`). Capture queue to loop.
    std::atomic<double> speed{1};
    const AudioLevelSource source;
};

} // namespace vantoro::capture

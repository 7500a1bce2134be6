// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>

#include "platform/pipewire/capture_timeline.h"
#include "platform/pipewire/stamped_ring.h"

namespace vantoro::pipewire {

/// What one capture stream shares between the real-time thread that fills it, the capture queue
/// that empties it, and the loop that looks after it.
struct CaptureFeed {
    /// For how long the capture queue may stand still before sound is lost.
    static constexpr std::chrono::seconds usualLength{30};

    explicit CaptureFeed(CaptureSource which, std::chrono::seconds length = usualLength)
        : ring(which == CaptureSource::systemAudio ? 2 : 1,
               static_cast<std::size_t>(length.count() * framesPerSecond), 65536),
          source(which) {}

    StampedRing ring;
    /// Callbacks so far. Real-time thread to loop.
    std::atomic<std::uint64_t> callbacks{0};
    /// How fast the resampler should run (see `ClockSteering`). Capture queue to loop.
    std::atomic<double> speed{1};
    const CaptureSource source;
};

} // namespace vantoro::pipewire

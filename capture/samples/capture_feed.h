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

/// Shared by the real-time thread that fills it, the capture queue and the loop that controls both.
struct CaptureFeed {
    /// How long the capture queue may stall before sound is lost. Takes no memory until it does.
    static constexpr std::chrono::seconds defaultLength{30};
    /// Memory allocated in advance: twice the normal backlog. In a longer stall each cycle takes a
    /// page or two from the kernel: some microseconds of its 21 milliseconds, in our node only.
    static constexpr std::chrono::seconds preallocatedLength{1};

    explicit CaptureFeed(AudioLevelSource which, std::chrono::seconds length = defaultLength)
        : ring(which == AudioLevelSource::systemAudio ? 2 : 1,
               static_cast<std::size_t>(length.count() * framesPerSecond), 65536,
               static_cast<std::size_t>(std::min(length, preallocatedLength).count() *
                                        framesPerSecond)),
          source(which) {}

    StampedRing ring;
    /// Number of callbacks. Real-time thread to loop.
    std::atomic<std::uint64_t> callbacks{0};
    /// First piece's stamp; 0: none yet. Real-time thread to loop.
    std::atomic<std::uint64_t> heardSince{0};
    /// Speed for the resampler (see `ClockSteering`). Capture queue to loop.
    std::atomic<double> speed{1};
    const AudioLevelSource source;
};

} // namespace vantoro::capture

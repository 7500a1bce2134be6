// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <functional>

#include "engine/ports/clock.h"
#include "engine/recording_types.h"
#include "engine/sample_buffer.h"

namespace vantoro {

/// The level of one buffer: its mean square in decibels, mapped linearly from -45 dBFS and below
/// (0) to full scale and above (1). 0 for a buffer that cannot be measured: no format, no frames,
/// or a sample count other than channels × frames.
float audioLevel(const SampleBuffer& buffer) noexcept;

/// Receives a level from 0 to 1. Called on the capture queue.
using AudioLevelCallback = std::function<void(AudioLevelSource source, float level)>;

/// Publishes at most 15 levels per second and source, each measured from one buffer. Capture queue
/// only.
class LevelMeter {
public:
    explicit LevelMeter(const Clock& clock) : clock_(clock) {}

    /// Measures only the buffers it publishes. The callback may be empty.
    void publishAudioLevel(const SampleBuffer& buffer, AudioLevelSource source,
                           const AudioLevelCallback& callback);

    /// Publishes the next buffer of each source at once.
    void reset() noexcept { lastLevelPublishTime_ = {}; }

private:
    const Clock& clock_;
    std::array<double, 2> lastLevelPublishTime_{}; // uptime in seconds, by source; 0: never
};

} // namespace vantoro

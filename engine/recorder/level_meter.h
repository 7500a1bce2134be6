// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <functional>

#include "engine/ports/clock.h"
#include "engine/recording_types.h"
#include "engine/sample_buffer.h"

namespace vantoro {

/// Receives a level in 0...1. Called on the capture queue.
using AudioLevelCallback = std::function<void(AudioLevelSource source, float level)>;

/// Publishes at most 15 levels a second and source, each of a single buffer. Capture queue only.
class LevelMeter {
public:
    explicit LevelMeter(const Clock& clock) : clock_(clock) {}

    /// Measures nothing but the buffers that it publishes. The callback may be empty.
    void publishAudioLevel(const SampleBuffer& buffer, AudioLevelSource source,
                           const AudioLevelCallback& callback);

    /// The next buffer of each source is published again at once.
    void reset() noexcept { lastLevelPublishTime_ = {}; }

private:
    const Clock& clock_;
    std::array<double, 2> lastLevelPublishTime_{}; // seconds of uptime, by source; 0 for never
};

} // namespace vantoro

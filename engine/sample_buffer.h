// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "engine/media_time.h"

namespace vantoro {

struct AudioStreamDescription {
    double sampleRate = 0; ///< Hz
    std::uint32_t channelsPerFrame = 0;
};

/// One timed piece of captured sound. It borrows its samples; copy them to keep them.
struct SampleBuffer {
    bool dataIsReady = true;
    std::int64_t frameCount = 0;
    MediaTime presentationTime; ///< of the first frame, monotonic clock
    std::optional<AudioStreamDescription> format;
    std::span<const float> samples; ///< planar: channels × frames
};

} // namespace vantoro

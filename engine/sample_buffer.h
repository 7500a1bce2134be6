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

/// One timed piece of captured sound, as the capture stream hands it to the capture queue.
/// It borrows its samples; whoever keeps them copies them.
struct SampleBuffer {
    bool dataIsReady = true;
    std::int64_t frameCount = 0;
    MediaTime presentationTime; ///< of the first frame, on the machine's monotonic clock
    std::optional<AudioStreamDescription> format;
    std::span<const float> samples; ///< channel after channel (channels × frames)
};

} // namespace vantoro

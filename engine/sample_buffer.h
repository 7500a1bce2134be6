// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <variant>

#include "engine/media_time.h"

namespace vantoro {

struct AudioStreamDescription {
    double sampleRate = 0; ///< Hz
    std::uint32_t channelsPerFrame = 0;
};

/// Samples of one buffer, channel after channel (channels × frames). Borrowed: valid for the call.
using PcmSamples = std::variant<std::span<const float>, std::span<const std::int16_t>,
                                std::span<const std::int32_t>>;

/// One timed piece of captured sound, as the capture stream hands it to the capture queue.
/// It borrows its samples; whoever keeps them copies them.
struct SampleBuffer {
    bool dataIsReady = true;
    std::int64_t frameCount = 0;
    MediaTime presentationTime; ///< of the first frame, on the machine's monotonic clock
    std::optional<AudioStreamDescription> format;
    PcmSamples samples;
};

} // namespace vantoro

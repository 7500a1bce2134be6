// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <span>

#include "engine/sample_buffer.h"

namespace vantoro::media {

/// Whether the buffer holds what it says, as a track of `channels` at 48 kHz takes it.
bool fitsTrack(const SampleBuffer& buffer, int channels) noexcept;

/// Copies one channel's frames from `firstFrame` on, as many as `into` holds. What is no number
/// becomes silence: one such sample would spoil a coder's later output. The buffer fits its track
/// and holds those frames.
void copySamples(const SampleBuffer& buffer, int channel, std::int64_t firstFrame,
                 std::span<float> into) noexcept;

} // namespace vantoro::media

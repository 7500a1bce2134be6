// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <span>

#include "engine/sample_buffer.h"

namespace vantoro::media {

/// Whether the buffer is consistent and fits a track of `channels` at 48 kHz.
bool fitsTrack(const SampleBuffer& buffer, int channels) noexcept;

/// Fills `into` with one channel's frames from `firstFrame` on, which the buffer must hold.
/// Replaces non-finite samples by silence: one would corrupt the coder's later output.
void copySamples(const SampleBuffer& buffer, int channel, std::int64_t firstFrame,
                 std::span<float> into) noexcept;

} // namespace vantoro::media

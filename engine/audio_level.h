// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/sample_buffer.h"

namespace vantoro {

/// The level of one buffer: its mean square in decibels, -45 dBFS and quieter as 0, full scale and
/// louder as 1, linear in between. 0 for a buffer that cannot be measured: without a format, with
/// samples that are not channels × frames, or with no frames. Reads the samples in place.
float audioLevel(const SampleBuffer& buffer) noexcept;

} // namespace vantoro

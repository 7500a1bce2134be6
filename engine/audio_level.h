// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/sample_buffer.h"

namespace vantoro {

/// The level of one buffer: its mean square in decibels, mapped linearly from -45 dBFS and below
/// (0) to full scale and above (1). 0 for a buffer that cannot be measured: no format, no frames,
/// or a sample count other than channels × frames.
float audioLevel(const SampleBuffer& buffer) noexcept;

} // namespace vantoro

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <span>

namespace vantoro::capture {

/// Borrowed planar sound, with the same number of frames in each channel.
using Planes = std::span<const std::span<const float>>;

/// A writable destination of the same form.
using WritablePlanes = std::span<const std::span<float>>;

/// Describes one piece of captured sound. A piece without frames only reports a loss.
struct Stamp {
    std::uint64_t nanoseconds = 0; ///< CLOCK_MONOTONIC, of the piece's cycle
    std::uint32_t frames = 0;
    std::uint32_t clockId = 0;    ///< the driver's clock
    std::uint64_t lostFrames = 0; ///< between the previous piece and this one
};

} // namespace vantoro::capture

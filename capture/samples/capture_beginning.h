// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "capture/samples/frame_clock.h"

namespace vantoro::capture {

/// The grid position where a recording starts, from the first stamp of each stream (0: none yet).
/// Streams that start together may miss the graph's first cycle; the others' sound is kept. The
/// start does not wait for a microphone that takes seconds to wake.
inline std::int64_t captureBeginning(std::vector<std::uint64_t> firstStamps, std::uint64_t now) {
    constexpr std::int64_t longestCycle = 8192; // frames
    std::erase(firstStamps, 0);
    if (firstStamps.empty()) {
        return gridPosition(now);
    }
    const auto [first, last] = std::ranges::minmax(firstStamps);
    return std::max(gridPosition(first), gridPosition(last) - longestCycle);
}

} // namespace vantoro::capture

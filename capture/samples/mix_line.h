// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "capture/samples/sound_piece.h"

namespace vantoro::capture {

/// A section of the grid in which sounds are mixed, and from whose front they are taken.
class MixLine {
public:
    explicit MixLine(std::size_t channels) : lines_(channels) {}

    /// Discards all content and moves the front; sound added before it is ignored.
    void moveFront(std::int64_t position);

    /// Mixes in as many channels. Non-finite samples of a faulty application count as silence.
    void add(std::int64_t position, Planes planes);

    /// Takes frames from the front, planar. Valid until the next call.
    std::span<const float> take(std::size_t frames);

private:
    std::int64_t front_ = 0;                // grid position of the first frame not yet taken
    std::size_t taken_ = 0;                 // taken frames at the start of each line
    std::vector<std::vector<float>> lines_; // one per channel, equal lengths
    std::vector<float> block_;              // last taken
};

} // namespace vantoro::capture

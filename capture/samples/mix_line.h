// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "capture/samples/planes.h"

namespace vantoro::capture {

/// A stretch of the grid on which sounds are added up, and from whose front they are taken.
/// What nothing was added to is silence.
class MixLine {
public:
    explicit MixLine(std::size_t channels) : lines_(channels) {}

    /// Everything before is over: what is added there later is left out.
    void moveFront(std::int64_t position);

    /// Adds frames of as many channels as the line has. Samples that are no numbers count as
    /// silence, so that one application's fault does not silence the others.
    void add(std::int64_t position, Planes planes);

    /// Takes frames off the front, channel after channel. Valid until the next call.
    std::span<const float> take(std::size_t frames);

private:
    std::int64_t front_ = 0;                // grid position of the first frame that is not over
    std::size_t taken_ = 0;                 // frames at the start of each line that are over
    std::vector<std::vector<float>> lines_; // one for each channel, all of one length
    std::vector<float> block_;              // what was taken last
};

} // namespace vantoro::capture

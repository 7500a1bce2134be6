// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/samples/stamped_ring.h"

#include <cassert>

namespace vantoro::capture {

// All counts only grow. A place in the ring is the count from the front, modulo the ring's size;
// frames that a piece skips at the ring's end count as written and read with it.
// - piecesRead_ <= piecesWritten_ <= piecesRead_ + stamps_.size()
// - framesRead_ <= framesWritten_ <= framesRead_ + capacity_
// - Only the writer changes what lies between written and read + capacity_; only the reader reads
//   what lies between read and written.
// - The release of piecesWritten_ publishes a piece's stamp and samples; the releases of
//   framesRead_ and piecesRead_ free their places. framesRead_ goes first: a thread that sees all
//   pieces read also sees all frames read.
// - The writer changes the front only when it sees all pieces read, and the reader reads it only
//   when it sees an unread piece, so these accesses are ordered like those to the piece's stamp.
//   Nothing unread ever lies before the front.
// - The release of framesLost_ follows those of all pieces before the loss, and the reader loads it
//   before it looks for pieces: if it then finds none, the loss lies after everything read so far.
//   The stamp of a later piece includes the losses before it.

StampedRing::StampedRing(std::size_t channels, std::size_t frames, std::size_t pieces,
                         std::size_t preallocatedFrames)
    : channels_(channels), capacity_(frames), samples_(frames * channels), stamps_(pieces) {
    assert(channels <= 2 && preallocatedFrames <= frames);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        samples_.preallocate(channel * frames, preallocatedFrames);
    }
    stamps_.preallocate(0, pieces * preallocatedFrames / frames);
}

/// Each piece is contiguous: one that would pass the ring's end starts at its front.
std::uint64_t StampedRing::beginOfPiece(std::uint64_t frame, std::size_t frames) const noexcept {
    const std::size_t place = placeOf(frame);
    return place + frames <= capacity_ ? frame : frame + (capacity_ - place);
}

Stamp& StampedRing::stampOf(std::uint64_t piece) noexcept {
    return stamps_[(piece - frontPiece_) % stamps_.size()];
}

} // namespace vantoro::capture

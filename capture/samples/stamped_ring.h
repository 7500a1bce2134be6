// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <atomic>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

#include "capture/samples/lazy_array.h"
#include "capture/samples/planes.h"

namespace vantoro::capture {

/// What is known of one piece of captured sound. A piece of no frames tells only what was lost.
struct Stamp {
    std::uint64_t nanoseconds = 0; ///< CLOCK_MONOTONIC, of the cycle that the piece came in
    std::uint32_t frames = 0;
    std::uint32_t clockId = 0;    ///< which driver's clock the cycle ran on
    std::uint64_t lostFrames = 0; ///< that lay between the piece before and this one
};

/// Hands pieces of sound from one real-time thread to one other thread. All memory is mapped at
/// construction; neither side ever waits for the other.
///
/// A ring that has been emptied is filled from its front again, so that it takes as much memory as
/// its largest backlog, however long it is. What goes beyond the frames `atHand` takes it page by
/// page as it comes: one page for every 1024 frames of a channel, while the reader stands still.
class StampedRing {
public:
    static constexpr std::size_t mostChannels = 2;

    StampedRing(std::size_t channels, std::size_t frames, std::size_t pieces,
                std::size_t atHand = 0)
        : channels_(channels), capacity_(frames), samples_(frames * channels), stamps_(pieces) {
        assert(channels <= mostChannels && atHand <= frames);
        for (std::size_t channel = 0; channel < channels; ++channel) {
            samples_.occupy(channel * frames, atHand);
        }
        stamps_.occupy(0, pieces * atHand / frames);
    }

    std::size_t channels() const noexcept { return channels_; }

    /// Writer. Takes a piece in, or refuses it whole when there is no room. `fill(planes)` writes
    /// the samples.
    template <class Fill>
    bool write(const Stamp& stamp, const Fill& fill) noexcept {
        const std::uint64_t piece = piecesWritten_.load(std::memory_order_relaxed);
        const std::uint64_t unread = piece - piecesRead_.load(std::memory_order_acquire);
        if (unread == 0) {
            frontPiece_ = piece;
            frontFrame_ = framesWritten_;
        }
        const std::uint64_t begin = beginOfPiece(framesWritten_, stamp.frames);
        const std::uint64_t end = begin + stamp.frames;
        if (unread == stamps_.size() ||
            end - framesRead_.load(std::memory_order_acquire) > capacity_) {
            return false;
        }
        fill(WritablePlanes(planesAt<float>(begin, stamp.frames)).first(channels_));
        Stamp& kept = stampOf(piece);
        kept = stamp;
        kept.lostFrames = framesLost_.load(std::memory_order_relaxed);
        framesWritten_ = end;
        piecesWritten_.store(piece + 1, std::memory_order_release);
        return true;
    }

    /// Writer: of a piece that was refused and is given up. The reader learns where it is missing.
    void lose(std::uint32_t frames) noexcept {
        framesLost_.store(framesLost_.load(std::memory_order_relaxed) + frames,
                          std::memory_order_release);
    }

    /// Writer: of how many frames the reader has not given the room back yet.
    std::size_t pendingFrames() const noexcept {
        return static_cast<std::size_t>(framesWritten_ -
                                        framesRead_.load(std::memory_order_acquire));
    }

    /// Reader. False when there is nothing to read. `take(stamp, planes)` is lent the piece.
    template <class Take>
    bool read(const Take& take) {
        // Before it is known that nothing is left: what was lost up to here then lies behind all
        // that was read, and before all that will be.
        const std::uint64_t lost = framesLost_.load(std::memory_order_acquire);
        const std::uint64_t piece = piecesRead_.load(std::memory_order_relaxed);
        if (piece == piecesWritten_.load(std::memory_order_acquire)) {
            const Stamp stamp{.lostFrames = lost - lossTold_};
            if (stamp.lostFrames == 0) {
                return false;
            }
            lossTold_ = lost;
            take(stamp,
                 Planes(std::array<std::span<const float>, mostChannels>()).first(channels_));
            return true;
        }
        Stamp stamp = stampOf(piece);
        const std::uint64_t lostBefore = stamp.lostFrames;
        stamp.lostFrames -= lossTold_;
        lossTold_ = lostBefore;
        const std::uint64_t begin =
            beginOfPiece(framesRead_.load(std::memory_order_relaxed), stamp.frames);
        take(std::as_const(stamp),
             Planes(planesAt<const float>(begin, stamp.frames)).first(channels_));
        framesRead_.store(begin + stamp.frames, std::memory_order_release);
        piecesRead_.store(piece + 1, std::memory_order_release);
        return true;
    }

private:
    std::size_t placeOf(std::uint64_t frame) const noexcept {
        return static_cast<std::size_t>((frame - frontFrame_) % capacity_);
    }

    /// Each piece lies in one stretch: one that would go beyond the ring's end begins at its front.
    std::uint64_t beginOfPiece(std::uint64_t frame, std::size_t frames) const noexcept {
        const std::size_t place = placeOf(frame);
        return place + frames <= capacity_ ? frame : frame + (capacity_ - place);
    }

    template <class Sample>
    std::array<std::span<Sample>, mostChannels> planesAt(std::uint64_t begin,
                                                         std::size_t frames) noexcept {
        std::array<std::span<Sample>, mostChannels> planes;
        for (std::size_t channel = 0; channel < channels_; ++channel) {
            planes.at(channel) = {samples_.data() + (channel * capacity_) + placeOf(begin), frames};
        }
        return planes;
    }

    Stamp& stampOf(std::uint64_t piece) noexcept {
        return stamps_[(piece - frontPiece_) % stamps_.size()];
    }

    const std::size_t channels_;
    const std::size_t capacity_; // frames
    LazyArray<float> samples_;   // channel after channel
    LazyArray<Stamp> stamps_;    // each with all that was lost before it

    // All counts only grow. The place in the ring is the count from the front, modulo the ring's
    // size; what a piece leaves empty at the ring's end is counted as written and read with it.
    // - piecesRead_ <= piecesWritten_ <= piecesRead_ + stamps_.size()
    // - framesRead_ <= framesWritten_ <= framesRead_ + capacity_
    // - The writer alone changes what lies between written and read + capacity_, the reader alone
    //   looks at what lies between read and written.
    // - The release of piecesWritten_ publishes a piece's stamp and samples together; the releases
    //   of framesRead_ and piecesRead_ give their places back. framesRead_ goes first: who sees all
    //   pieces read sees all frames read.
    // - The writer changes the front only when it sees all pieces read, and the reader looks at it
    //   only when it sees one that is not: the same release and acquire as a piece's stamp keep
    //   them apart. Nothing unread ever lies before the front.
    // - The release of framesLost_ follows those of all pieces before the loss, and the reader
    //   looks at it before it looks for pieces: where it then finds none, the loss lies behind all
    //   that it has read. A later piece has the losses before it in its stamp.
    std::uint64_t framesWritten_ = 0; // the writer's own: the reader learns it from the stamps
    std::uint64_t frontPiece_ = 0;    // the count that lies at the ring's front
    std::uint64_t frontFrame_ = 0;    // likewise
    alignas(64) std::atomic<std::uint64_t> piecesWritten_{0}; // stored by the writer only
    std::atomic<std::uint64_t> framesLost_{0};                // stored by the writer only
    alignas(64) std::atomic<std::uint64_t> piecesRead_{0};    // stored by the reader only
    std::atomic<std::uint64_t> framesRead_{0};                // stored by the reader only
    std::uint64_t lossTold_ = 0;                              // the reader's own
};

} // namespace vantoro::capture

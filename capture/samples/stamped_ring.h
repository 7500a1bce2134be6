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

/// Describes one piece of captured sound. A piece without frames only reports a loss.
struct Stamp {
    std::uint64_t nanoseconds = 0; ///< CLOCK_MONOTONIC, of the piece's cycle
    std::uint32_t frames = 0;
    std::uint32_t clockId = 0;    ///< the driver's clock
    std::uint64_t lostFrames = 0; ///< between the previous piece and this one
};

/// Passes pieces of sound from one real-time thread to one other thread. All memory is mapped at
/// construction; neither side ever waits for the other.
///
/// An empty ring is filled from its front again, so that it takes only as much memory as its
/// largest backlog. Beyond `preallocatedFrames`, it takes memory page by page while the reader
/// stalls: one page per 1024 frames of a channel.
class StampedRing {
public:
    static constexpr std::size_t maximumChannels = 2;

    StampedRing(std::size_t channels, std::size_t frames, std::size_t pieces,
                std::size_t preallocatedFrames = 0)
        : channels_(channels), capacity_(frames), samples_(frames * channels), stamps_(pieces) {
        assert(channels <= maximumChannels && preallocatedFrames <= frames);
        for (std::size_t channel = 0; channel < channels; ++channel) {
            samples_.preallocate(channel * frames, preallocatedFrames);
        }
        stamps_.preallocate(0, pieces * preallocatedFrames / frames);
    }

    std::size_t channels() const noexcept { return channels_; }

    /// Writer. Stores a piece, or refuses it whole if there is no room. `fill(planes)` writes the
    /// samples.
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

    /// Writer. Drops a refused piece; the reader learns where it is missing.
    void lose(std::uint32_t frames) noexcept {
        framesLost_.store(framesLost_.load(std::memory_order_relaxed) + frames,
                          std::memory_order_release);
    }

    /// Writer. Frames that the reader has not released yet.
    std::size_t pendingFrames() const noexcept {
        return static_cast<std::size_t>(framesWritten_ -
                                        framesRead_.load(std::memory_order_acquire));
    }

    /// Reader. False if there is nothing to read. `take(stamp, planes)` borrows the piece.
    template <class Take>
    bool read(const Take& take) {
        // Read before looking for pieces: if there are none, this loss lies after everything read
        // and before everything to come.
        const std::uint64_t lost = framesLost_.load(std::memory_order_acquire);
        const std::uint64_t piece = piecesRead_.load(std::memory_order_relaxed);
        if (piece == piecesWritten_.load(std::memory_order_acquire)) {
            const Stamp stamp{.lostFrames = lost - reportedLoss_};
            if (stamp.lostFrames == 0) {
                return false;
            }
            reportedLoss_ = lost;
            take(stamp,
                 Planes(std::array<std::span<const float>, maximumChannels>()).first(channels_));
            return true;
        }
        Stamp stamp = stampOf(piece);
        const std::uint64_t lostBefore = stamp.lostFrames;
        stamp.lostFrames -= reportedLoss_;
        reportedLoss_ = lostBefore;
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

    /// Each piece is contiguous: one that would pass the ring's end starts at its front.
    std::uint64_t beginOfPiece(std::uint64_t frame, std::size_t frames) const noexcept {
        const std::size_t place = placeOf(frame);
        return place + frames <= capacity_ ? frame : frame + (capacity_ - place);
    }

    template <class Sample>
    std::array<std::span<Sample>, maximumChannels> planesAt(std::uint64_t begin,
                                                            std::size_t frames) noexcept {
        std::array<std::span<Sample>, maximumChannels> planes;
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
    LazyArray<Stamp> stamps_;    // each with the total loss before it

    // All counts only grow. A place in the ring is the count from the front, modulo the ring's
    // size; frames that a piece skips at the ring's end count as written and read with it.
    // - piecesRead_ <= piecesWritten_ <= piecesRead_ + stamps_.size()
    // - framesRead_ <= framesWritten_ <= framesRead_ + capacity_
    // - Only the writer changes what lies between written and read + capacity_; only the reader
    //   reads what lies between read and written.
    // - The release of piecesWritten_ publishes a piece's stamp and samples together; the releases
    //   of framesRead_ and piecesRead_ free their places. framesRead_ goes first: a thread that
    //   sees all pieces read also sees all frames read.
    // - The writer changes the front only when it sees all pieces read, and the reader reads it
    //   only when it sees an unread piece: the same release and acquire as for a piece's stamp
    //   order these accesses. Nothing unread ever lies before the front.
    // - The release of framesLost_ follows those of all pieces before the loss, and the reader
    //   loads it before it looks for pieces: if it then finds none, the loss lies after everything
    //   read so far. The stamp of a later piece includes the losses before it.
    std::uint64_t framesWritten_ = 0; // writer only; the reader derives it from the stamps
    std::uint64_t frontPiece_ = 0;    // the count at the ring's front
    std::uint64_t frontFrame_ = 0;    // likewise
    alignas(64) std::atomic<std::uint64_t> piecesWritten_{0}; // stored by the writer only
    std::atomic<std::uint64_t> framesLost_{0};                // stored by the writer only
    alignas(64) std::atomic<std::uint64_t> piecesRead_{0};    // stored by the reader only
    std::atomic<std::uint64_t> framesRead_{0};                // stored by the reader only
    std::uint64_t reportedLoss_ = 0;                          // reader only
};

} // namespace vantoro::capture

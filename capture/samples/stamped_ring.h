// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <utility>

#include "capture/samples/lazy_array.h"
#include "capture/samples/sound_piece.h"

namespace vantoro::capture {

/// Passes pieces of sound, in one channel or two, from one real-time thread to one other thread;
/// neither waits for the other. All memory is mapped at construction.
///
/// An empty ring is filled from its front again, so that it takes only as much memory as its
/// largest backlog: beyond `preallocatedFrames` page by page, while the reader stalls.
class StampedRing {
public:
    StampedRing(std::size_t channels, std::size_t frames, std::size_t pieces,
                std::size_t preallocatedFrames = 0);

    /// Writer. Stores a piece, whose samples `fill(planes)` writes, or refuses it for lack of room.
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
        framesLost_.fetch_add(frames, std::memory_order_release);
    }

    /// Writer. Frames that the reader has not released yet.
    std::size_t pendingFrames() const noexcept {
        return framesWritten_ - framesRead_.load(std::memory_order_acquire);
    }

    /// Reader. False if there is nothing to read. `take(stamp, planes)` borrows the piece.
    template <class Take>
    bool read(const Take& take) {
        // Before looking for pieces: if there are none, this loss follows everything read so far.
        const std::uint64_t lost = framesLost_.load(std::memory_order_acquire);
        const std::uint64_t piece = piecesRead_.load(std::memory_order_relaxed);
        const bool isEmpty = piece == piecesWritten_.load(std::memory_order_acquire);
        Stamp stamp = isEmpty ? Stamp{.lostFrames = lost} : stampOf(piece);
        stamp.lostFrames -= std::exchange(reportedLoss_, stamp.lostFrames);
        if (isEmpty) {
            if (stamp.lostFrames > 0) {
                take(stamp, Planes(std::array<std::span<const float>, 2>()).first(channels_));
            }
            return stamp.lostFrames > 0;
        }
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
        return (frame - frontFrame_) % capacity_;
    }

    std::uint64_t beginOfPiece(std::uint64_t frame, std::size_t frames) const noexcept;
    Stamp& stampOf(std::uint64_t piece) noexcept;

    /// The second channel means nothing in mono.
    template <class Sample>
    std::array<std::span<Sample>, 2> planesAt(std::uint64_t begin, std::size_t frames) noexcept {
        Sample* const first = samples_.data() + placeOf(begin);
        return {{{first, frames}, {first + ((channels_ - 1) * capacity_), frames}}};
    }

    const std::size_t channels_;
    const std::size_t capacity_; // frames
    LazyArray<float> samples_;   // channel after channel
    LazyArray<Stamp> stamps_;    // each with the total loss before it

    // See the source for the order of the accesses.
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

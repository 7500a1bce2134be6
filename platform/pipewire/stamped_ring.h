// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vantoro::pipewire {

/// What is known of one piece of captured sound. A piece of no frames tells only what was lost.
struct Stamp {
    std::uint64_t nanoseconds = 0; ///< CLOCK_MONOTONIC, of the cycle that the piece came in
    std::uint32_t frames = 0;
    std::uint32_t clockId = 0;    ///< which driver's clock the cycle ran on
    std::uint64_t lostFrames = 0; ///< that lay between the piece before and this one
};

/// Hands pieces of interleaved sound from one real-time thread to one other thread. Memory is all
/// taken at construction; neither side ever waits for the other.
class StampedRing {
public:
    StampedRing(std::size_t channels, std::size_t frames, std::size_t pieces)
        : channels_(channels), samples_(frames * channels), stamps_(pieces) {}

    std::size_t channels() const noexcept { return channels_; }

    /// Writer. Takes a piece in, or refuses it whole when there is no room. `fill(destination,
    /// firstFrame)` writes the interleaved samples from `firstFrame` of the piece on; it is called
    /// once, or twice where the ring ends.
    template <class Fill>
    bool write(const Stamp& stamp, Fill fill) noexcept {
        const std::uint64_t piece = piecesWritten_.load(std::memory_order_relaxed);
        const std::size_t capacity = samples_.size() / channels_;
        if (piece - piecesRead_.load(std::memory_order_acquire) == stamps_.size() ||
            pendingFrames() + stamp.frames > capacity) {
            return false;
        }
        const std::size_t start = framesWritten_ % capacity;
        const std::size_t first = std::min<std::size_t>(stamp.frames, capacity - start);
        fill(std::span(samples_).subspan(start * channels_, first * channels_), 0);
        if (first < stamp.frames) {
            fill(std::span(samples_).first((stamp.frames - first) * channels_), first);
        }
        Stamp& kept = stamps_[piece % stamps_.size()];
        kept = stamp;
        kept.lostFrames = framesLost_.load(std::memory_order_relaxed);
        framesWritten_ += stamp.frames;
        piecesWritten_.store(piece + 1, std::memory_order_release);
        return true;
    }

    /// Writer: of a piece that was refused and is given up. The reader learns where it is missing.
    void lose(std::uint32_t frames) noexcept {
        framesLost_.store(framesLost_.load(std::memory_order_relaxed) + frames,
                          std::memory_order_release);
    }

    /// Writer: frames that the reader has not taken yet.
    std::size_t pendingFrames() const noexcept {
        return static_cast<std::size_t>(framesWritten_ -
                                        framesRead_.load(std::memory_order_acquire));
    }

    /// Reader. False when there is nothing to read. `samples` becomes the piece, interleaved.
    bool read(Stamp& stamp, std::vector<float>& samples) {
        // Before it is known that nothing is left: what was lost up to here then lies behind all
        // that was read, and before all that will be.
        const std::uint64_t lost = framesLost_.load(std::memory_order_acquire);
        const std::uint64_t piece = piecesRead_.load(std::memory_order_relaxed);
        if (piece == piecesWritten_.load(std::memory_order_acquire)) {
            stamp = {.lostFrames = lost - lossTold_};
            samples.clear();
            lossTold_ = lost;
            return stamp.lostFrames > 0;
        }
        stamp = stamps_[piece % stamps_.size()];
        const std::uint64_t lostBefore = stamp.lostFrames;
        stamp.lostFrames -= lossTold_;
        lossTold_ = lostBefore;
        samples.resize(stamp.frames * channels_);
        const std::uint64_t frame = framesRead_.load(std::memory_order_relaxed);
        const std::size_t start = frame * channels_ % samples_.size();
        const std::size_t first = std::min(samples.size(), samples_.size() - start);
        std::copy_n(samples_.begin() + static_cast<std::ptrdiff_t>(start), first, samples.begin());
        std::copy_n(samples_.begin(), samples.size() - first,
                    samples.begin() + static_cast<std::ptrdiff_t>(first));
        framesRead_.store(frame + stamp.frames, std::memory_order_release);
        piecesRead_.store(piece + 1, std::memory_order_release);
        return true;
    }

private:
    const std::size_t channels_;
    std::vector<float> samples_;
    std::vector<Stamp> stamps_; // each with all that was lost before it

    // All counts only grow, and the place in the ring is the count modulo its size.
    // - piecesRead_ <= piecesWritten_ <= piecesRead_ + stamps_.size()
    // - framesRead_ <= framesWritten_ <= framesRead_ + capacity
    // - The writer alone changes what lies between written and read + capacity, the reader alone
    //   looks at what lies between read and written.
    // - The release of piecesWritten_ publishes a piece's stamp and samples together; the releases
    //   of framesRead_ and piecesRead_ give their places back.
    std::uint64_t framesWritten_ = 0; // the writer's own: the reader learns it from the stamps
    alignas(64) std::atomic<std::uint64_t> piecesWritten_{0}; // stored by the writer only
    std::atomic<std::uint64_t> framesLost_{0};                // stored by the writer only
    alignas(64) std::atomic<std::uint64_t> piecesRead_{0};    // stored by the reader only
    std::atomic<std::uint64_t> framesRead_{0};                // stored by the reader only
    std::uint64_t lossTold_ = 0;                              // the reader's own
};

} // namespace vantoro::pipewire

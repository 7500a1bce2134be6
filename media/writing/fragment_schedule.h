// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <algorithm>
#include <cstdint>
#include <span>

#include "media/codec/aac.h"

namespace vantoro::media {

/// When a movie's fragments end, in frames from the session's start. A packet belongs to the
/// fragment in which it begins, so a fragment exceeds its nominal end by up to one packet.
class FragmentSchedule {
public:
    /// How long a source that stops delivering may delay a fragment.
    static constexpr std::int64_t patience = 96000; ///< frames: 2 s

    FragmentSchedule(std::int64_t initialInterval, std::int64_t interval) noexcept
        : interval_(std::max<std::int64_t>(interval, packetFrames)),
          end_(std::max<std::int64_t>(initialInterval, packetFrames)) {}

    /// The current fragment's nominal end.
    std::int64_t end() const noexcept { return end_; }

    void advance() noexcept { end_ += interval_; }

    /// How many frames a track's encoder needs before it outputs the fragment's last packet.
    std::int64_t framesToClose() const noexcept {
        // The encoder's delay is two packets: the priming and one of lookahead.
        constexpr std::int64_t delay = 2LL * packetFrames;
        return ((end_ + packetFrames - 1) / packetFrames * packetFrames) + delay;
    }

    /// Whether to fill short tracks with silence now, because another track is too far past the
    /// fragment's end. `positions`: each track's length.
    bool isHeldBack(std::span<const std::int64_t> positions) const noexcept {
        return !positions.empty() && std::ranges::min(positions) < framesToClose() &&
               std::ranges::max(positions) > end_ + patience;
    }

private:
    std::int64_t interval_;
    std::int64_t end_;
};

} // namespace vantoro::media

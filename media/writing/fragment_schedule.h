// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <span>

namespace vantoro::media {

/// When a movie's fragments end, in frames from the session's start. A packet belongs to the
/// fragment in which it begins, so a fragment exceeds its nominal end by up to one packet.
class FragmentSchedule {
public:
    /// How long a source that stops delivering may delay a fragment.
    static constexpr std::int64_t patience = 96000; ///< frames: 2 s

    FragmentSchedule(std::int64_t initialInterval, std::int64_t interval) noexcept;

    /// The current fragment's nominal end.
    std::int64_t end() const noexcept { return end_; }

    void advance() noexcept { end_ += interval_; }

    /// How many frames a track's encoder needs before it outputs the fragment's last packet.
    std::int64_t framesToClose() const noexcept;

    /// Whether to fill short tracks with silence now, because another track is too far past the
    /// fragment's end. `positions`: each track's length.
    bool isHeldBack(std::span<const std::int64_t> positions) const noexcept;

private:
    std::int64_t interval_;
    std::int64_t end_;
};

} // namespace vantoro::media

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <span>

namespace vantoro::media {

/// When a movie's fragments end, in frames from the session's start. Packets belong to the
/// fragment in which they begin, so a fragment reaches up to one packet beyond its nominal end.
class FragmentSchedule {
public:
    /// A source that stops delivering holds a fragment back for this long.
    static constexpr std::int64_t patience = 96000; ///< frames: 2 s

    FragmentSchedule(std::int64_t initialInterval, std::int64_t interval) noexcept;

    /// Nominal end of the fragment that is being filled.
    std::int64_t end() const noexcept { return end_; }

    void advance() noexcept { end_ += interval_; }

    /// How many frames a track's coder must have been given before it hands over the fragment's
    /// last packet.
    std::int64_t framesToClose() const noexcept;

    /// Whether the tracks that are short of the fragment's end have to be filled now, since
    /// another one is too far beyond it. `positions`: how many frames each track has.
    bool isHeldBack(std::span<const std::int64_t> positions) const noexcept;

private:
    std::int64_t interval_;
    std::int64_t end_;
};

} // namespace vantoro::media

// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/writing/fragment_schedule.h"

#include <algorithm>

#include "media/codec/aac.h"

namespace vantoro::media {

FragmentSchedule::FragmentSchedule(std::int64_t initialInterval, std::int64_t interval) noexcept
    : interval_(std::max<std::int64_t>(interval, packetFrames)),
      end_(std::max<std::int64_t>(initialInterval, packetFrames)) {}

std::int64_t FragmentSchedule::framesToClose() const noexcept {
    // The encoder's delay is two packets: the priming and one of lookahead.
    constexpr std::int64_t delay = 2LL * packetFrames;
    return ((end_ + packetFrames - 1) / packetFrames * packetFrames) + delay;
}

bool FragmentSchedule::isHeldBack(std::span<const std::int64_t> positions) const noexcept {
    const bool oneIsShort = std::ranges::any_of(
        positions, [this](std::int64_t position) { return position < framesToClose(); });
    return oneIsShort && std::ranges::any_of(positions, [this](std::int64_t position) {
               return position > end_ + patience;
           });
}

} // namespace vantoro::media

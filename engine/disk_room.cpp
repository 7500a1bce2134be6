// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/disk_room.h"

#include <algorithm>
#include <limits>

namespace vantoro {

namespace {

constexpr int finalBitRate = 256000;
/// The next look comes with the next fragment, 10 s later; by then another one waits to be written,
/// and the disk may be late.
constexpr std::int64_t secondsToEndIn = 30;
constexpr std::int64_t leastSeconds = 30; // of a recording that may begin
constexpr std::int64_t secondsWorthTelling = 600;
constexpr std::int64_t spareBytes = 1 << 20; // for what others write, and the disk's own tables

/// With what describes the sound, and the coder's inexactness.
constexpr std::int64_t bytesPerSecond(std::int64_t bitRate) {
    const std::int64_t sound = bitRate / 8;
    return sound + sound / 16;
}

/// How long the recording can go on until it must end; below zero when it is too late for that.
std::int64_t secondsLeft(std::uint64_t available, std::int64_t recordedSeconds, int bitRate) {
    constexpr std::int64_t finalRate = bytesPerSecond(finalBitRate);
    const std::int64_t rate = bytesPerSecond(bitRate) + finalRate;
    const auto room = static_cast<std::int64_t>(
        std::min<std::uint64_t>(available, std::numeric_limits<std::int64_t>::max()));
    const std::int64_t left =
        room - spareBytes - recordedSeconds * finalRate - secondsToEndIn * rate;
    return left < 0 ? -1 : left / rate;
}

} // namespace

DiskRoom diskRoom(std::uint64_t available, std::int64_t recordedSeconds, int bitRate) {
    const std::int64_t seconds = secondsLeft(available, recordedSeconds, bitRate);
    if (seconds < 0) {
        return {.advice = RoomAdvice::end, .minutesLeft = 0};
    }
    return {.advice = seconds < secondsWorthTelling ? RoomAdvice::tell : RoomAdvice::enough,
            .minutesLeft = seconds / 60};
}

bool isRoomToStart(std::uint64_t available, int bitRate) {
    return secondsLeft(available, 0, bitRate) >= leastSeconds;
}

} // namespace vantoro

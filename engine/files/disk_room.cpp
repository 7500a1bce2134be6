// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/files/disk_room.h"

#include <algorithm>
#include <limits>

namespace vantoro {

namespace {

constexpr int finalBitRate = 256000;
/// The next look comes with the next fragment, 10 s later; by then another one waits to be written,
/// and the disk may be late.
constexpr std::chrono::seconds timeToEndIn(30);
constexpr std::chrono::seconds leastLength(30); // of a recording that may begin
constexpr std::chrono::minutes timeWorthTelling(10);
constexpr std::int64_t spareBytes = 1 << 20; // for what others write, and the disk's own tables

/// With what describes the sound, and the coder's inexactness.
constexpr std::int64_t bytesPerSecond(std::int64_t bitRate) {
    const std::int64_t sound = bitRate / 8;
    return sound + sound / 16;
}

/// How long the recording can go on until it must end; below zero when it is too late for that.
std::chrono::seconds timeLeft(std::uint64_t available, std::chrono::seconds recorded, int bitRate) {
    constexpr std::int64_t finalRate = bytesPerSecond(finalBitRate);
    const std::int64_t rate = bytesPerSecond(bitRate) + finalRate;
    const auto room = static_cast<std::int64_t>(
        std::min<std::uint64_t>(available, std::numeric_limits<std::int64_t>::max()));
    const std::int64_t left =
        room - spareBytes - recorded.count() * finalRate - timeToEndIn.count() * rate;
    return std::chrono::seconds(left < 0 ? -1 : left / rate);
}

} // namespace

DiskRoom diskRoom(std::uint64_t available, std::chrono::seconds recorded, int bitRate) {
    const auto left = timeLeft(available, recorded, bitRate);
    if (left.count() < 0) {
        return {.advice = RoomAdvice::end, .minutesLeft = 0};
    }
    return {.advice = left < timeWorthTelling ? RoomAdvice::tell : RoomAdvice::enough,
            .minutesLeft = std::chrono::floor<std::chrono::minutes>(left).count()};
}

bool isRoomToStart(std::uint64_t available, int bitRate) {
    return timeLeft(available, {}, bitRate) >= leastLength;
}

} // namespace vantoro

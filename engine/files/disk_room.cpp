// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/files/disk_room.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <utility>

#include "engine/recording_types.h"

namespace vantoro {

namespace {

constexpr int finalBitRate = 256000;
/// The next check comes with the next fragment, 10 s later. By then another fragment waits to be
/// written, and the disk may be late.
constexpr std::chrono::seconds reservedTime(30);
constexpr std::chrono::seconds minimumTime(30); // below this, do not start
constexpr std::chrono::minutes lowRoomTime(10);
constexpr std::int64_t spareBytes = 1 << 20; // for other programs and file system metadata

/// Includes container overhead and the encoder's inaccuracy.
constexpr std::int64_t bytesPerSecond(std::int64_t bitRate) {
    const std::int64_t sound = bitRate / 8;
    return sound + sound / 16;
}

/// Until the recording must end; negative if that is past.
std::chrono::seconds timeLeft(std::uint64_t available, std::chrono::seconds recorded, int bitRate,
                              int copiedBitRate) {
    const std::int64_t finalRate = bytesPerSecond(finalBitRate + copiedBitRate);
    const std::int64_t rate = bytesPerSecond(bitRate) + finalRate;
    const auto room = static_cast<std::int64_t>(
        std::min<std::uint64_t>(available, std::numeric_limits<std::int64_t>::max()));
    const std::int64_t left =
        room - spareBytes - recorded.count() * finalRate - reservedTime.count() * rate;
    return std::chrono::seconds(left < 0 ? -1 : left / rate);
}

} // namespace

DiskRoom diskRoom(std::uint64_t available, std::chrono::seconds recorded, int bitRate,
                  int copiedBitRate) {
    const auto left = timeLeft(available, recorded, bitRate, copiedBitRate);
    if (left.count() < 0) {
        return {.advice = RoomAdvice::end, .minutesLeft = 0};
    }
    return {.advice = left < lowRoomTime ? RoomAdvice::tell : RoomAdvice::enough,
            .minutesLeft = std::chrono::floor<std::chrono::minutes>(left).count()};
}

bool hasRoomToStart(std::uint64_t available, int bitRate, int copiedBitRate) {
    return timeLeft(available, {}, bitRate, copiedBitRate) >= minimumTime;
}

RoomWatch::RoomWatch(const FileSystem& fileSystem, std::filesystem::path folder, int bitRate,
                     int copiedBitRate, const DiskRoomCallback& onDiskRoom)
    : fileSystem_(fileSystem),
      folder_(std::move(folder)),
      bitRate_(bitRate),
      copiedBitRate_(copiedBitRate),
      onDiskRoom_(onDiskRoom) {}

void RoomWatch::checkBeforeStart() {
    const auto available = availableSpace();
    if (!available) {
        return;
    }
    if (!hasRoomToStart(*available, bitRate_, copiedBitRate_)) {
        throw RecordingError(RecordingError::Case::diskTooFull);
    }
    report(diskRoom(*available, {}, bitRate_, copiedBitRate_));
}

void RoomWatch::check(MediaTime recorded, std::uint64_t waitingBytes) {
    if (reported_ == RoomAdvice::end) {
        return;
    }
    if (const auto available = availableSpace()) {
        const auto length = std::chrono::ceil<std::chrono::seconds>(
            std::chrono::duration<double>(recorded.seconds()));
        report(diskRoom(*available - std::min(*available, waitingBytes), length, bitRate_,
                        copiedBitRate_));
    }
}

/// Absent if unknown; then the first failing write reports the full disk.
std::optional<std::uint64_t> RoomWatch::availableSpace() const {
    try {
        return fileSystem_.availableSpace(folder_);
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

void RoomWatch::report(DiskRoom room) {
    if (room.advice <= reported_) {
        return;
    }
    reported_ = room.advice;
    if (onDiskRoom_) {
        onDiskRoom_(room);
    }
}

} // namespace vantoro

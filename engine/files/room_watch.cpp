// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/files/room_watch.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

#include "engine/recording_types.h"

namespace vantoro {

RoomWatch::RoomWatch(const FileSystem& fileSystem, std::filesystem::path folder, int bitRate,
                     const DiskRoomCallback& onDiskRoom)
    : fileSystem_(fileSystem),
      folder_(std::move(folder)),
      bitRate_(bitRate),
      onDiskRoom_(onDiskRoom) {}

void RoomWatch::checkBeforeStart() {
    const auto available = availableSpace();
    if (!available) {
        return;
    }
    if (!hasRoomToStart(*available, bitRate_)) {
        throw RecordingError(RecordingError::Case::diskTooFull);
    }
    report(diskRoom(*available, {}, bitRate_));
}

void RoomWatch::check(MediaTime recorded, std::uint64_t waitingBytes) {
    if (reported_ == RoomAdvice::end) {
        return;
    }
    if (const auto available = availableSpace()) {
        const auto length = std::chrono::ceil<std::chrono::seconds>(
            std::chrono::duration<double>(recorded.seconds()));
        report(diskRoom(*available - std::min(*available, waitingBytes), length, bitRate_));
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

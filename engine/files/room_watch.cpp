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

void RoomWatch::lookBeforeTheStart() {
    const auto available = availableSpace();
    if (!available) {
        return;
    }
    if (!isRoomToStart(*available, bitRate_)) {
        throw RecordingError(RecordingError::Case::diskTooFull);
    }
    tell(diskRoom(*available, {}, bitRate_));
}

void RoomWatch::look(MediaTime recorded, std::uint64_t waitingBytes) {
    if (told_ == RoomAdvice::end) {
        return;
    }
    if (const auto available = availableSpace()) {
        const auto length = std::chrono::ceil<std::chrono::seconds>(
            std::chrono::duration<double>(recorded.seconds()));
        tell(diskRoom(*available - std::min(*available, waitingBytes), length, bitRate_));
    }
}

/// Nothing where it cannot be told: then the first write that fails has to do.
std::optional<std::uint64_t> RoomWatch::availableSpace() const {
    try {
        return fileSystem_.availableSpace(folder_);
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

void RoomWatch::tell(DiskRoom room) {
    if (room.advice <= told_) {
        return;
    }
    told_ = room.advice;
    if (onDiskRoom_) {
        onDiskRoom_(room);
    }
}

} // namespace vantoro

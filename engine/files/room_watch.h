// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "engine/files/disk_room.h"
#include "engine/media_time.h"
#include "engine/ports/file_system.h"

namespace vantoro {

/// Monitors the free disk space for one recording and reports when it runs short. May block on the
/// disk: one thread at a time that may wait.
class RoomWatch {
public:
    /// `folder` exists. `bitRate`: bits per second of all tracks together. The referenced objects
    /// outlive the watch; the callback may be empty.
    RoomWatch(const FileSystem& fileSystem, std::filesystem::path folder, int bitRate,
              const DiskRoomCallback& onDiskRoom);

    /// Throws `RecordingError` if there is too little space to start.
    void checkBeforeStart();

    /// Checks after `recorded` was recorded, of which `waitingBytes` still wait to be written.
    void check(MediaTime recorded, std::uint64_t waitingBytes);

private:
    std::optional<std::uint64_t> availableSpace() const;
    void report(DiskRoom room);

    const FileSystem& fileSystem_;
    const std::filesystem::path folder_;
    const int bitRate_;
    const DiskRoomCallback& onDiskRoom_;
    RoomAdvice reported_ = RoomAdvice::enough; // latest
};

} // namespace vantoro

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "engine/files/disk_room.h"
#include "engine/media_time.h"
#include "engine/ports/file_system.h"

namespace vantoro {

/// Looks at the room that one recording has on its disk, and tells when it is getting short. Asking
/// a disk may take as long as it likes: on threads that may wait for it, one at a time.
class RoomWatch {
public:
    /// In a folder that is there. `bitRate`: of all tracks together, bits a second. What is
    /// referred to outlives the watch; the callback may be empty.
    RoomWatch(const FileSystem& fileSystem, std::filesystem::path folder, int bitRate,
              const DiskRoomCallback& onDiskRoom);

    /// Throws a `RecordingError` where a recording would be of no use.
    void lookBeforeTheStart();

    /// When so much was recorded, of which `waitingBytes` are still to be written.
    void look(MediaTime recorded, std::uint64_t waitingBytes);

private:
    std::optional<std::uint64_t> availableSpace() const;
    void tell(DiskRoom room);

    const FileSystem& fileSystem_;
    const std::filesystem::path folder_;
    const int bitRate_;
    const DiskRoomCallback& onDiskRoom_;
    RoomAdvice told_ = RoomAdvice::enough; // the latest
};

} // namespace vantoro

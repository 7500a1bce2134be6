// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>

#include "engine/media_time.h"
#include "engine/ports/file_system.h"

namespace vantoro {

/// What the free disk space means for a recording.
enum class RoomAdvice : std::uint8_t {
    enough,
    tell, ///< tell the user how much is left
    end,  ///< only enough left for the final file
};

struct DiskRoom {
    RoomAdvice advice = RoomAdvice::enough;
    std::int64_t minutesLeft = 0; ///< whole minutes until the recording must end

    friend bool operator==(const DiskRoom&, const DiskRoom&) = default;
};

/// Reports that space is running short, and that the recording must end: each at most once. On the
/// thread of `start`, or on the one that waits for the disk.
using DiskRoomCallback = std::function<void(DiskRoom room)>;

/// What `available` bytes mean for a recording of this length, whose tracks together take `bitRate`
/// bits per second: the temporary file grows, and the whole final file comes beside it, with copies
/// of the tracks at `copiedBitRate`, if any.
DiskRoom diskRoom(std::uint64_t available, std::chrono::seconds recorded, int bitRate,
                  int copiedBitRate = 0);

/// Whether there is space for at least 30 seconds of recording and its final file.
bool hasRoomToStart(std::uint64_t available, int bitRate, int copiedBitRate = 0);

/// Monitors the free disk space for one recording and reports when it runs short. May block on the
/// disk: one thread at a time that may wait.
class RoomWatch {
public:
    /// `folder` exists. The bit rates are as above. The referenced objects
    /// outlive the watch; the callback may be empty.
    RoomWatch(const FileSystem& fileSystem, std::filesystem::path folder, int bitRate,
              int copiedBitRate, const DiskRoomCallback& onDiskRoom);

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
    const int copiedBitRate_;
    const DiskRoomCallback& onDiskRoom_;
    RoomAdvice reported_ = RoomAdvice::enough; // latest
};

} // namespace vantoro

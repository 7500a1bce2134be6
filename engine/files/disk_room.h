// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

namespace vantoro {

/// What the room on the disk means for a recording.
enum class RoomAdvice : std::uint8_t {
    enough,
    tell, ///< the user should know how much is left
    end,  ///< only what the final file needs is left
};

struct DiskRoom {
    RoomAdvice advice = RoomAdvice::enough;
    std::int64_t minutesLeft = 0; ///< whole ones, until the recording will have to end

    friend bool operator==(const DiskRoom&, const DiskRoom&) = default;
};

/// Told that the room is getting short, and that the recording must end: once each at most. On the
/// thread of `start`, or on the one that waits for the disk.
using DiskRoomCallback = std::function<void(DiskRoom room)>;

/// What the room means for a recording of this length, whose tracks together take `bitRate`
/// (bits a second): the temporary file goes on growing, and the final file of the whole length is
/// made while that is still there. `available` (bytes) is what nobody has claimed yet. What a mix
/// made ahead occupies does not count as room, though it will be.
DiskRoom diskRoom(std::uint64_t available, std::chrono::seconds recorded, int bitRate);

/// Whether a recording that begins now is of any use: half a minute of it fits, with its final
/// file, before it would have to end.
bool isRoomToStart(std::uint64_t available, int bitRate);

} // namespace vantoro

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "engine/media_time.h"

namespace vantoro {

/// A moment, in a time zone.
struct WallTime {
    std::int64_t seconds = 0;   ///< since 1970, UTC
    std::int32_t utcOffset = 0; ///< seconds by which local time is ahead of UTC

    friend bool operator==(const WallTime&, const WallTime&) = default;
};

/// A moment that the user marked.
struct RecordingMark {
    MediaTime time;   ///< from the recording's start
    std::string text; ///< UTF-8

    friend bool operator==(const RecordingMark&, const RecordingMark&) = default;
};

/// What a recording's files tell players and libraries about it.
struct RecordingTags {
    std::optional<WallTime> start;         ///< of the recording
    std::string title;                     ///< UTF-8; if empty, each file is titled after its name
    std::vector<RecordingMark> marks = {}; ///< a file's chapters

    friend bool operator==(const RecordingTags&, const RecordingTags&) = default;
};

} // namespace vantoro

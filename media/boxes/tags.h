// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "engine/ports/recording_tags.h"
#include "media/boxes/box_reader.h"
#include "media/boxes/box_writer.h"

namespace vantoro::media {

// The recorder's files carry their tags in the form that music libraries know: title, date,
// program and chapters in `udta`, inside the movie's header.

/// Seconds since 1904, as headers count; 0 if unknown.
std::uint64_t boxTime(const std::optional<WallTime>& time) noexcept;

/// Local time with its offset: "2025-03-01T09:30:15+08:00".
std::string dateText(const WallTime& time);

/// Nothing for any other text.
std::optional<WallTime> timeOf(const std::string& dateText);

void writeTags(BoxWriter& out, const RecordingTags& tags);

/// The tags in the content of a movie's header, except marks. A tag that is missing or damaged
/// stays empty.
RecordingTags readTags(ByteSpan header);

} // namespace vantoro::media

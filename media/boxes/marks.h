// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "engine/ports/recording_tags.h"
#include "media/boxes/box_reader.h"
#include "media/boxes/box_writer.h"

namespace vantoro::media {

// Marks are in the fragment of the movie that is written next, in a private box that other readers
// skip and that the fragment's checksum covers. The final file has them as its chapters.

/// The text, cut to what a chapter's title can hold, between two characters.
std::string chapterTitle(std::string text);

/// Writes nothing if there are no marks.
void writeMarks(BoxWriter& out, std::span<const RecordingMark> marks);

/// The marks in the content of a private box. Nothing for another's box; throws DamagedMovie if it
/// is incomplete.
std::vector<RecordingMark> readMarks(ByteSpan content);

/// The marks as chapters, ordered by time; nothing if there are none. A file holds the first 255.
void writeChapters(BoxWriter& out, std::span<const RecordingMark> marks);

} // namespace vantoro::media

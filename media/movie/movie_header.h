// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <vector>

#include "media/boxes/box_reader.h"
#include "media/movie/movie_scan.h"

namespace vantoro::media {

/// The tracks that a movie's header describes. `content`: that of its box. Throws DamagedMovie if
/// track IDs repeat, there are more than 16 tracks, or an audio track is not at 48 kHz.
std::vector<TrackHeader> parseHeader(ByteSpan content);

} // namespace vantoro::media

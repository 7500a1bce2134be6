// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>
#include <vector>

#include "media/coding/aac_track.h"
#include "media/movie/movie_scan.h"

namespace vantoro::media {

/// How each track of a movie is coded, in the scan's order; nothing for a track that is not AAC.
/// Looks at no byte of the header more than a few times, whatever the bytes claim. Throws
/// DamagedMovie when an AAC track is not described as it has to be.
std::vector<std::optional<AacTrack>> readCodecs(const MovieScan& scan);

} // namespace vantoro::media

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>
#include <vector>

#include "media/codec/aac.h"
#include "media/movie/movie_scan.h"

namespace vantoro::media {

/// Each track's AAC parameters, in the scan's order; nothing for a track that is not AAC. Visits
/// each byte of the header at most a few times. Throws DamagedMovie if an AAC track's description
/// is invalid.
std::vector<std::optional<AacTrack>> readCodecs(const MovieScan& scan);

} // namespace vantoro::media

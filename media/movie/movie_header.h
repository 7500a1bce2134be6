// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <vector>

#include "media/boxes/box_reader.h"
#include "media/movie/movie_scan.h"

namespace vantoro::media {

/// The tracks that a movie's header describes, from the content of its box. Throws DamagedMovie
/// when they cannot be told apart, are more than 16, or hold sound that is not of 48 kHz.
std::vector<TrackHeader> parseHeader(ByteSpan content);

} // namespace vantoro::media

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <vector>

#include "platform/ffmpeg/handles.h"
#include "platform/ffmpeg/movie_scan.h"

namespace vantoro::ffmpeg {

/// How each track of a movie is coded, in the scan's order; null for a track that is not AAC. Looks
/// at no byte of the header more than a few times, whatever the bytes claim.
/// Throws DamagedMovie when an AAC track is not described as it has to be.
std::vector<ParametersHandle> readCodecs(const MovieScan& scan);

} // namespace vantoro::ffmpeg

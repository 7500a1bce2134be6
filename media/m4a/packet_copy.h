// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stop_token>

#include "engine/ports/recording.h"
#include "media/m4a/m4a_file.h"
#include "media/movie/movie.h"

namespace vantoro::media {

/// Copies the packets of the first frames of a track of an intact movie, and the priming before
/// them, as they are: what they sound like does not change, and an hour takes a fraction of a
/// second.
/// Throws DamagedMovie when the file has changed meanwhile, what either file throws, and when a
/// stop is requested std::errc::operation_canceled.
void copyPackets(const std::shared_ptr<const Movie>& movie, std::size_t track, std::int64_t frames,
                 M4aFile& file, const ExportProgress& progress, const std::stop_token& stop);

} // namespace vantoro::media

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

/// Copies the priming and the first `frames` of an intact movie's track without recoding: lossless,
/// and a fraction of a second for an hour.
/// Throws DamagedMovie if the file has changed, what either file throws, and
/// std::errc::operation_canceled on a stop request.
void copyPackets(const std::shared_ptr<const Movie>& movie, std::size_t track, std::int64_t frames,
                 M4aFile& file, const ExportProgress& progress, const std::stop_token& stop);

} // namespace vantoro::media

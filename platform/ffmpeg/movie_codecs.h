#pragma once

#include <vector>

#include "engine/ports/file_system.h"
#include "platform/ffmpeg/handles.h"
#include "platform/ffmpeg/movie_scan.h"

namespace vantoro::ffmpeg {

/// How each track of a movie is coded, in the scan's order; null for a track that is not AAC. Reads
/// nothing of the file but the header that the scan has bounded.
/// Throws std::runtime_error when the header cannot be understood.
std::vector<ParametersHandle> readCodecs(const InputFile& file, const MovieScan& scan);

} // namespace vantoro::ffmpeg

#pragma once

#include <functional>

#include "engine/ports/media_toolkit.h"
#include "platform/ffmpeg/coded_chunk.h"
#include "platform/ffmpeg/mixer.h"

namespace vantoro::ffmpeg {

/// Codes a mix on so many threads, at least one, and returns when all of it was handed to `sink`,
/// packet by packet in their order and on the calling thread, as `progress` is called there too.
/// What is handed over does not depend on the number of threads. Needs the same memory for any
/// length. Throws what the mixing, the coder or the sink throws.
void codeInParallel(const Mix& mix, unsigned threads, const ChunkSplicer::Sink& sink,
                    const ExportProgress& progress);

} // namespace vantoro::ffmpeg

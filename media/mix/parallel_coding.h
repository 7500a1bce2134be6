// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <stop_token>

#include "engine/ports/recording.h"
#include "media/mix/coded_chunk.h"
#include "media/mix/mixer.h"

namespace vantoro::media {

/// Codes a mix from a chunk on, on so many threads, at least one, and returns when all of it went
/// through the splicer, which has what lies before, on the calling thread, as `progress` is called
/// there too. What comes out does not depend on the number of threads. Needs the same memory for
/// any length. Throws what the mixing, the coder or the splicer throws, and at once, when a stop is
/// requested, std::errc::operation_canceled.
void codeInParallel(const Coding& coding, const Mix& mix, std::int64_t firstChunk, unsigned threads,
                    ChunkSplicer& splicer, const ExportProgress& progress,
                    const std::stop_token& stop);

} // namespace vantoro::media

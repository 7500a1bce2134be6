// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <stop_token>

#include "engine/ports/recording.h"
#include "media/mix/encoded_segment.h"
#include "media/mix/mixer.h"

namespace vantoro::media {

/// Encodes a mix from `firstSegment` on, on `threads` threads (at least one), and passes it to the
/// splicer, which has received the segments before. Calls the splicer and `progress` on the calling
/// thread. The result does not depend on `threads`; memory does not depend on the mix's length.
/// Throws what the mixer, the encoder and the splicer throw, and promptly
/// std::errc::operation_canceled on a stop request.
void encodeInParallel(const AacCodec& codec, const Mix& mix, std::int64_t firstSegment,
                      unsigned threads, SegmentSplicer& splicer, const ExportProgress& progress,
                      const std::stop_token& stop);

} // namespace vantoro::media

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "media/codec/aac_codec.h"

namespace vantoro::ffmpeg {

/// libavcodec's AAC encoder and decoder; valid until the program ends.
const media::AacCodec& codec() noexcept;

} // namespace vantoro::ffmpeg

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "media/coding/coding.h"

namespace vantoro::ffmpeg {

/// libavcodec's coder and decoder; valid until the program ends.
const media::Coding& coding() noexcept;

} // namespace vantoro::ffmpeg

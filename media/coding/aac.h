// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

namespace vantoro::media {

/// The audio format of all the recorder's files: AAC at 48 kHz, 1024 frames per packet. A coder's
/// first packet is its priming, which precedes the track's first frame.
inline constexpr int framesPerSecond = 48000;
inline constexpr int packetFrames = 1024;
inline constexpr int primingFrames = packetFrames;

} // namespace vantoro::media

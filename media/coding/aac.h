// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

namespace vantoro::media {

/// The one form of sound in all files of the recorder: AAC at 48 kHz, whose packets cover 1024
/// frames each. A coder's first packet is its priming: it sounds before the track's first frame.
inline constexpr int framesPerSecond = 48000;
inline constexpr int packetFrames = 1024;
inline constexpr int primingFrames = packetFrames;

} // namespace vantoro::media

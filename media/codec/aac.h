// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vantoro::media {

/// The audio format of all the recorder's files: AAC at 48 kHz, 1024 frames per packet. An
/// encoder's first packet is its priming, which precedes the track's first frame.
inline constexpr int framesPerSecond = 48000;
inline constexpr int packetFrames = 1024;
inline constexpr int primingFrames = packetFrames;

/// An AAC track's parameters, for its file and its decoder.
struct AacTrack {
    int channels = 2;
    int bitRate = 0;                             ///< bits per second
    std::vector<std::byte> decoderConfiguration; ///< as the standard defines it

    bool operator==(const AacTrack&) const = default;
};

/// How a channel's window overlaps the next packet's. Packets with equal window ends are
/// interchangeable as predecessors.
struct WindowEnd {
    bool isShort = false;
    unsigned shape = 0;

    bool operator==(const WindowEnd&) const = default;
};

/// Per channel.
using WindowEnds = std::array<WindowEnd, 2>;

struct AacPacket {
    std::vector<std::uint8_t> bytes;
    std::int64_t start = 0;  ///< frames from the sound's beginning; negative for the priming
    std::int64_t frames = 0; ///< that the packet covers
    WindowEnds windowEnds{}; ///< set by `AacEncoder`
};

} // namespace vantoro::media

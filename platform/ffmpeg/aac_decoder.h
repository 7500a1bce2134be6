// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "platform/ffmpeg/aac.h"
#include "platform/ffmpeg/handles.h"

namespace vantoro::ffmpeg {

/// One packet's sound, channel by channel; both the same for a single channel. Borrowed from the
/// decoder until its next call.
struct DecodedSound {
    std::span<const float, packetFrames> left;
    std::span<const float, packetFrames> right;
};

/// Decodes the packets of one track in their order. A packet's sound comes out with the packet, but
/// sounds right only when the one before it was decoded too. Used by one thread at a time.
class AacDecoder {
public:
    /// Throws std::runtime_error when it cannot be opened.
    explicit AacDecoder(const AVCodecParameters& parameters);

    /// Nothing for a packet that makes no sense.
    std::optional<DecodedSound> decode(std::span<const std::byte> packet);

    /// The next packet does not follow the one before.
    void forget() noexcept;

private:
    CoderHandle decoder_;
    PacketHandle packet_;
    FrameHandle frame_;
};

} // namespace vantoro::ffmpeg

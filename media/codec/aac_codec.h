// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "media/codec/aac.h"

namespace vantoro::media {

/// Encodes one channel, so that decoding a packet needs only the previous one. The last packet may
/// be shorter. Used by one thread at a time; every operation throws std::runtime_error on failure.
class ChannelEncoder {
public:
    virtual ~ChannelEncoder() = default;
    /// The decoder's configuration.
    virtual std::vector<std::byte> configuration() const = 0;
    /// Takes the next 1024 frames, or fewer in the last call.
    virtual void encode(std::span<const float> samples) = 0;
    virtual void finish() = 0;
    /// The next packet; nothing if it needs more sound, or at the end.
    virtual std::optional<AacPacket> nextPacket() = 0;
};

/// One packet's sound; for mono both channels are the same. Borrowed from the decoder until its
/// next call.
struct DecodedSound {
    std::span<const float, packetFrames> left;
    std::span<const float, packetFrames> right;
};

/// Decodes one track's packets in order, without delay. A packet decodes correctly only after the
/// previous one. Used by one thread at a time.
class AacDecoder {
public:
    virtual ~AacDecoder() = default;
    /// Nothing for an invalid packet.
    virtual std::optional<DecodedSound> decode(std::span<const std::byte> packet) = 0;
    /// Call before a packet that does not follow the previous one.
    virtual void reset() noexcept = 0;
};

/// Makes encoders and decoders, which it must outlive. Any thread.
class AacCodec {
public:
    virtual ~AacCodec() = default;
    virtual bool hasEncoder() const noexcept = 0;
    /// `bitRate`: bits per second. Throws std::runtime_error on failure.
    virtual std::unique_ptr<ChannelEncoder> makeChannelEncoder(int bitRate) const = 0;
    /// Throws std::runtime_error on failure.
    virtual std::unique_ptr<AacDecoder> makeDecoder(const AacTrack& track) const = 0;
};

} // namespace vantoro::media

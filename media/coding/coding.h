// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "media/coding/aac.h"
#include "media/coding/aac_track.h"

namespace vantoro::media {

/// Of a coder.
struct AacPacket {
    std::vector<std::uint8_t> bytes;
    std::int64_t start = 0;  ///< frames from the sound's beginning, before which the priming lies
    std::int64_t frames = 0; ///< that it covers
};

/// Codes the sound of one channel at 48 kHz, with nothing whose decoding depends on more than the
/// packet before. Packets cover 1024 frames each, the first of them the priming, the last what is
/// left. Used by one thread at a time; every operation throws std::runtime_error where it fails.
class ChannelCoder {
public:
    virtual ~ChannelCoder() = default;
    /// How the packets are to be decoded.
    virtual std::vector<std::byte> configuration() const = 0;
    /// Takes the next 1024 frames, or fewer in the last call.
    virtual void code(std::span<const float> samples) = 0;
    /// There is no more sound.
    virtual void finish() = 0;
    /// The next packet; nothing where it takes more sound, or all have been taken.
    virtual std::optional<AacPacket> nextPacket() = 0;
};

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
    virtual ~AacDecoder() = default;
    /// Nothing for a packet that makes no sense.
    virtual std::optional<DecodedSound> decode(std::span<const std::byte> packet) = 0;
    /// The next packet does not follow the one before.
    virtual void forget() noexcept = 0;
};

/// Makes coders and decoders. Any thread. Lives as long as anything that codes.
class Coding {
public:
    virtual ~Coding() = default;
    /// Whether there is a coder.
    virtual bool hasCoder() const noexcept = 0;
    /// Throws std::runtime_error when it cannot be opened. `bitRate`: bits a second.
    virtual std::unique_ptr<ChannelCoder> makeChannelCoder(int bitRate) const = 0;
    /// Throws std::runtime_error when it cannot be opened.
    virtual std::unique_ptr<AacDecoder> makeDecoder(const AacTrack& track) const = 0;
};

} // namespace vantoro::media

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

/// A coder's output.
struct AacPacket {
    std::vector<std::uint8_t> bytes;
    std::int64_t start = 0;  ///< frames from the sound's beginning; negative for the priming
    std::int64_t frames = 0; ///< that the packet covers
};

/// Codes one channel at 48 kHz, so that decoding a packet needs only the previous one. Packets
/// cover 1024 frames each; the first is the priming, the last may be shorter. Used by one thread at
/// a time; every operation throws std::runtime_error on failure.
class ChannelCoder {
public:
    virtual ~ChannelCoder() = default;
    /// The decoder's configuration.
    virtual std::vector<std::byte> configuration() const = 0;
    /// Takes the next 1024 frames, or fewer in the last call.
    virtual void code(std::span<const float> samples) = 0;
    /// Ends the input.
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

/// Makes coders and decoders, which it must outlive. Any thread.
class Coding {
public:
    virtual ~Coding() = default;
    /// Whether a coder is available.
    virtual bool hasCoder() const noexcept = 0;
    /// `bitRate`: bits per second. Throws std::runtime_error on failure.
    virtual std::unique_ptr<ChannelCoder> makeChannelCoder(int bitRate) const = 0;
    /// Throws std::runtime_error on failure.
    virtual std::unique_ptr<AacDecoder> makeDecoder(const AacTrack& track) const = 0;
};

} // namespace vantoro::media

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "media/codec/aac_codec.h"

namespace vantoro::media {

/// After this many packets an encoder's output no longer depends on where it began: it keeps the
/// previous packet for the overlap, and chooses windows by the recent level.
inline constexpr int packetsToSettle = 32;

using PacketSink = std::function<void(AacPacket packet)>;

/// Decides for each packet whether one encoder's packets can serve both channels: when the channels
/// have been equal for so long that their encoders would be in the same state.
class ChannelSharing {
public:
    /// About a second: earlier differences are inaudible.
    static constexpr int packetsUntilShared = 48;

    /// Whether to share the next packet. `alike`: whether its channels are equal.
    bool next(bool alike) noexcept {
        const bool shared = alike && alikePackets_ >= packetsUntilShared;
        alikePackets_ = alike ? (shared ? alikePackets_ : alikePackets_ + 1) : 0;
        return shared;
    }

private:
    int alikePackets_ = packetsUntilShared; // before the first packet both are silent
};

/// Encodes one or two channels. Used by one thread at a time; every operation throws
/// std::runtime_error on failure.
///
/// The codec's fast method distorts tones above -7 dB of full scale. So each channel is encoded on
/// its own at a lower level, and its gain field in the packets restores the level.
///
/// Most calls, and every microphone, have identical channels: then one encoder's packets serve
/// both. When the channels diverge, the second encoder first encodes the latest packets it missed,
/// so that its output continues seamlessly.
class AacEncoder {
public:
    /// `packetsAhead`: how many packets of sound may be written before they are encoded.
    AacEncoder(const AacCodec& codec, int channels, int bitRate, int packetsAhead = 1);

    int channels() const noexcept { return static_cast<int>(channels_.size()); }

    const AacTrack& track() const noexcept { return track_; }

    /// Where to write one channel's 1024 frames for the next `encode`, or a later one.
    std::span<float> plane(int channel, int packetsLater = 0) noexcept;

    /// Encodes the first `frames` of the next planes: 1024, or fewer in the last call.
    void encode(int frames, const PacketSink& sink);

    /// Outputs what the encoders still hold. No call may follow.
    void finish(const PacketSink& sink);

private:
    struct Channel {
        std::unique_ptr<ChannelEncoder> encoder;
        std::vector<float> planes; // `packetsAhead` packets
    };

    void shareOrCatchUp(int frames);
    void catchUp();
    void receive(const PacketSink& sink);

    std::vector<Channel> channels_;
    ChannelSharing sharing_;
    const std::size_t packetsAhead_;
    std::size_t next_ = 0;                  // plane to encode next
    std::size_t encoders_;                  // in use: one per channel, or one for both
    std::deque<std::vector<float>> missed_; // by the second encoder, in packets
    AacTrack track_;
};

} // namespace vantoro::media

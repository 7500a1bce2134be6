// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "media/coding/aac_packet.h"
#include "media/coding/channel_sharing.h"
#include "media/coding/coding.h"

namespace vantoro::media {

/// After so many packets a coder goes on as one that has heard everything: it remembers the packet
/// before for the overlap, and chooses windows by how loud it was of late.
inline constexpr int packetsToSettle = 32;

/// Takes a coded packet.
using PacketSink = std::function<void(AacPacket packet)>;

/// Of a packet, channel by channel.
using WindowEnds = std::array<WindowEnd, 2>;

/// Codes sound at 48 kHz into packets as a `ChannelCoder` does, but of one channel or two.
/// Used by one thread at a time; every operation throws std::runtime_error where it fails.
///
/// The coder's fast method limits how finely a strong tone can be described: it overdrives one
/// beyond -7 dB of full scale. So each channel is coded on its own, quieter, and the packets say
/// that it is to be played as much louder again.
///
/// Most calls, and every microphone, sound the same on both sides: then one coder's packets serve
/// both channels. The second coder hears the last of what it missed when the sides part, so that
/// its packets go on from those that it takes over.
class AacEncoder {
public:
    /// The sound of so many packets may be written before it is coded.
    AacEncoder(const Coding& coding, int channels, int bitRate, int packetsAhead = 1);

    int channels() const noexcept { return static_cast<int>(channels_.size()); }

    /// What a file has to say about the packets.
    const AacTrack& track() const noexcept { return track_; }

    /// The sound of the next `encode`, or of one of those after it: 1024 frames of one channel, to
    /// be written before.
    std::span<float> plane(int channel, int packetsLater = 0) noexcept;

    /// Codes the first `frames` of the next planes: 1024, or fewer in the last call.
    void encode(int frames, const PacketSink& sink);

    /// Hands over what the coder still holds. Nothing may follow.
    void finish(const PacketSink& sink);

    /// Of the packet that is handed over just now.
    const WindowEnds& windowEnds() const noexcept { return windowEnds_; }

private:
    struct Channel {
        std::unique_ptr<ChannelCoder> coder;
        std::vector<float> planes; // of as many packets as may be ahead
    };

    void shareOrCatchUp(int frames);
    void rememberForSecondCoder(int frames);
    void catchUp();
    void receive(const PacketSink& sink);

    std::vector<Channel> channels_;
    ChannelSharing sharing_;
    const std::size_t packetsAhead_;
    std::size_t next_ = 0;                  // of the planes: the one to be coded next
    std::size_t coders_;                    // at work: the channels', or one for both
    std::deque<std::vector<float>> missed_; // by the second coder, whole packets
    AacTrack track_;
    WindowEnds windowEnds_;
};

} // namespace vantoro::media

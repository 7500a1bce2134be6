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

/// After this many packets a coder's output no longer depends on where it began: it keeps the
/// previous packet for the overlap, and chooses windows by the recent level.
inline constexpr int packetsToSettle = 32;

/// Receives a coded packet.
using PacketSink = std::function<void(AacPacket packet)>;

/// A packet's window ends, per channel.
using WindowEnds = std::array<WindowEnd, 2>;

/// Codes one or two channels of sound at 48 kHz into packets.
/// Used by one thread at a time; every operation throws std::runtime_error on failure.
///
/// The coder's fast method distorts tones above -7 dB of full scale. So each channel is coded on
/// its own at a lower level, and its gain field in the packets restores the level.
///
/// Most calls, and every microphone, have identical channels: then one coder's packets serve both.
/// When the channels diverge, the second coder first codes the most recent packets it missed, so
/// that its output continues seamlessly.
class AacEncoder {
public:
    /// `packetsAhead`: how many packets of sound may be written before they are coded.
    AacEncoder(const Coding& coding, int channels, int bitRate, int packetsAhead = 1);

    int channels() const noexcept { return static_cast<int>(channels_.size()); }

    /// The file's description of the packets.
    const AacTrack& track() const noexcept { return track_; }

    /// Where to write one channel's 1024 frames for the next `encode`, or a later one.
    std::span<float> plane(int channel, int packetsLater = 0) noexcept;

    /// Codes the first `frames` of the next planes: 1024, or fewer in the last call.
    void encode(int frames, const PacketSink& sink);

    /// Outputs what the coder still holds. No call may follow.
    void finish(const PacketSink& sink);

    /// Those of the packet that the sink is receiving.
    const WindowEnds& windowEnds() const noexcept { return windowEnds_; }

private:
    struct Channel {
        std::unique_ptr<ChannelCoder> coder;
        std::vector<float> planes; // `packetsAhead` packets
    };

    void shareOrCatchUp(int frames);
    void rememberForSecondCoder(int frames);
    void catchUp();
    void receive(const PacketSink& sink);

    std::vector<Channel> channels_;
    ChannelSharing sharing_;
    const std::size_t packetsAhead_;
    std::size_t next_ = 0;                  // plane to code next
    std::size_t coders_;                    // in use: one per channel, or one for both
    std::deque<std::vector<float>> missed_; // by the second coder, in packets
    AacTrack track_;
    WindowEnds windowEnds_;
};

} // namespace vantoro::media

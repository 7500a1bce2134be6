// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/m4a/packet_repair.h"

#include <algorithm>

#include "media/codec/aac_encoder.h"

namespace vantoro::media {

namespace {

std::vector<std::byte> silentPacket(const AacCodec& codec, const AacTrack& track) {
    constexpr int bitRatePerChannel = 96000;
    constexpr int packetsUntilEven = 8; // the first may differ from those within silence
    AacEncoder encoder(codec, track.channels, bitRatePerChannel * track.channels);
    std::vector<std::byte> latest;
    const auto keep = [&](const AacPacket& packet) {
        const auto bytes = std::as_bytes(std::span(packet.bytes));
        latest.assign(bytes.begin(), bytes.end());
    };
    for (int packet = 0; packet < packetsUntilEven; ++packet) {
        for (int channel = 0; channel < track.channels; ++channel) {
            std::ranges::fill(encoder.plane(channel), 0.0F);
        }
        encoder.encode(packetFrames, keep);
    }
    return latest;
}

} // namespace

PacketRepair::PacketRepair(const AacCodec& codec, const AacTrack& track)
    : decoder_(codec.makeDecoder(track)), silence_(silentPacket(codec, track)) {}

std::span<const std::byte> PacketRepair::repaired(std::span<const std::byte> packet) {
    if (packet.empty()) {
        decoder_->reset();
        return silence_;
    }
    return decoder_->decode(packet) ? packet : silence_;
}

} // namespace vantoro::media

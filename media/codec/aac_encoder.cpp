// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/codec/aac_encoder.h"

#include <algorithm>
#include <array>
#include <optional>
#include <stdexcept>
#include <utility>

#include "media/codec/aac_packet.h"

namespace vantoro::media {

namespace {

// At this gain even a full-scale tone is encoded well; the packets' gain fields undo it.
constexpr unsigned gainSteps = 6;
constexpr float encodingVolume = 0.35355339F; // 2 to the power of -6/4

/// One channel's configuration, with the number of channels replaced.
AacTrack describeTrack(const ChannelEncoder& encoder, int channels, int bitRate) {
    AacTrack track{
        .channels = channels, .bitRate = bitRate, .decoderConfiguration = encoder.configuration()};
    if (track.decoderConfiguration.size() < 2) {
        throw std::runtime_error("The AAC coder does not describe its packets.");
    }
    // 5 bits of object type, 4 of sample rate, 4 of channels.
    constexpr std::byte channelBits{0x78};
    std::byte& field = track.decoderConfiguration[1];
    field = (field & ~channelBits) | static_cast<std::byte>(channels << 3);
    return track;
}

} // namespace

AacEncoder::AacEncoder(const AacCodec& codec, int channels, int bitRate, int packetsAhead)
    : packetsAhead_(static_cast<std::size_t>(packetsAhead)),
      encoders_(static_cast<std::size_t>(channels)) {
    if (channels < 1 || channels > 2) {
        throw std::invalid_argument("Only mono and stereo sound can be coded.");
    }
    for (int channel = 0; channel < channels; ++channel) {
        channels_.push_back({.encoder = codec.makeChannelEncoder(bitRate / channels),
                             .planes = std::vector<float>(packetsAhead_ * packetFrames)});
    }
    track_ = describeTrack(*channels_[0].encoder, channels, bitRate);
}

std::span<float> AacEncoder::plane(int channel, int packetsLater) noexcept {
    const auto packet = (next_ + static_cast<std::size_t>(packetsLater)) % packetsAhead_;
    return std::span(channels_[static_cast<std::size_t>(channel)].planes)
        .subspan(packet * packetFrames, packetFrames);
}

void AacEncoder::encode(int frames, const PacketSink& sink) {
    const auto count = static_cast<std::size_t>(frames);
    for (int channel = 0; channel < channels(); ++channel) {
        for (float& sample : plane(channel).first(count)) {
            sample *= encodingVolume;
        }
    }
    shareOrCatchUp(frames);
    for (std::size_t channel = 0; channel < encoders_; ++channel) {
        channels_[channel].encoder->encode(plane(static_cast<int>(channel)).first(count));
    }
    receive(sink);
    next_ = (next_ + 1) % packetsAhead_;
}

void AacEncoder::finish(const PacketSink& sink) {
    for (const Channel& channel : std::span(channels_).first(encoders_)) {
        channel.encoder->finish();
    }
    receive(sink);
}

/// Brings the second encoder up to date when it is needed again.
void AacEncoder::shareOrCatchUp(int frames) {
    if (channels_.size() < 2) {
        return;
    }
    const auto count = static_cast<std::size_t>(frames);
    if (!sharing_.next(std::ranges::equal(plane(0).first(count), plane(1).first(count)))) {
        encoders_ = 2;
        catchUp();
        return;
    }
    encoders_ = 1;
    if (frames == packetFrames) { // no packet follows a shorter one
        if (missed_.size() == packetsToSettle) {
            missed_.pop_front();
        }
        missed_.emplace_back(plane(1).begin(), plane(1).end());
    }
}

void AacEncoder::catchUp() {
    ChannelEncoder& second = *channels_[1].encoder;
    for (const std::vector<float>& samples : missed_) {
        second.encode(samples);
        while (second.nextPacket()) { // the first encoder's packet replaced it
        }
    }
    missed_.clear();
}

void AacEncoder::receive(const PacketSink& sink) {
    while (auto packet = channels_[0].encoder->nextPacket()) {
        std::optional<AacPacket> second;
        std::array<std::span<const std::uint8_t>, 2> contents{packet->bytes, packet->bytes};
        if (encoders_ == 2) {
            second = channels_[1].encoder->nextPacket();
            if (!second) {
                throw std::runtime_error("The AAC coders are out of step.");
            }
            contents[1] = second->bytes;
        }
        std::ranges::transform(contents, packet->windowEnds.begin(), windowEndOf);
        packet->bytes = joinChannels(std::span(contents).first(channels_.size()), gainSteps);
        sink(std::move(*packet));
    }
}

} // namespace vantoro::media

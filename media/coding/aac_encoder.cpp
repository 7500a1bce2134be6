// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/coding/aac_encoder.h"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <utility>

namespace vantoro::media {

namespace {

// At this gain even a full-scale tone is coded well; the packets' gain fields undo it.
constexpr unsigned gainSteps = 6;
constexpr float codingVolume = 0.35355339F; // 2 to the power of -6/4

/// One channel's configuration, with the number of channels replaced.
AacTrack describeTrack(const ChannelCoder& coder, int channels, int bitRate) {
    AacTrack track{
        .channels = channels, .bitRate = bitRate, .coderConfiguration = coder.configuration()};
    if (track.coderConfiguration.size() < 2) {
        throw std::runtime_error("The AAC coder does not describe its packets.");
    }
    // 5 bits of object type, 4 of sample rate, 4 of channels.
    constexpr std::byte channelBits{0x78};
    std::byte& field = track.coderConfiguration[1];
    field = (field & ~channelBits) | static_cast<std::byte>(channels << 3);
    return track;
}

} // namespace

AacEncoder::AacEncoder(const Coding& coding, int channels, int bitRate, int packetsAhead)
    : packetsAhead_(static_cast<std::size_t>(packetsAhead)),
      coders_(static_cast<std::size_t>(channels)) {
    if (channels < 1 || channels > 2) {
        throw std::invalid_argument("Only mono and stereo sound can be coded.");
    }
    for (int channel = 0; channel < channels; ++channel) {
        channels_.push_back({.coder = coding.makeChannelCoder(bitRate / channels),
                             .planes = std::vector<float>(packetsAhead_ * packetFrames)});
    }
    track_ = describeTrack(*channels_[0].coder, channels, bitRate);
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
            sample *= codingVolume;
        }
    }
    shareOrCatchUp(frames);
    for (std::size_t channel = 0; channel < coders_; ++channel) {
        channels_[channel].coder->code(plane(static_cast<int>(channel)).first(count));
    }
    receive(sink);
    next_ = (next_ + 1) % packetsAhead_;
}

void AacEncoder::finish(const PacketSink& sink) {
    for (const Channel& channel : std::span(channels_).first(coders_)) {
        channel.coder->finish();
    }
    receive(sink);
}

/// Decides how many coders the next packet takes, and brings the second one up to date when it is
/// needed again.
void AacEncoder::shareOrCatchUp(int frames) {
    if (channels_.size() < 2) {
        return;
    }
    const auto count = static_cast<std::size_t>(frames);
    if (sharing_.next(std::ranges::equal(plane(0).first(count), plane(1).first(count)))) {
        coders_ = 1;
        rememberForSecondCoder(frames);
    } else {
        coders_ = 2;
        catchUp();
    }
}

void AacEncoder::rememberForSecondCoder(int frames) {
    if (frames < packetFrames) {
        return; // the last packet
    }
    std::vector<float> samples;
    if (missed_.size() == packetsToSettle) {
        samples = std::move(missed_.front());
        missed_.pop_front();
    }
    const std::span<const float> heard = plane(1);
    samples.assign(heard.begin(), heard.end());
    missed_.push_back(std::move(samples));
}

void AacEncoder::catchUp() {
    ChannelCoder& second = *channels_[1].coder;
    for (const std::vector<float>& samples : missed_) {
        second.code(samples);
        while (second.nextPacket()) { // the first coder's packet replaced it
        }
    }
    missed_.clear();
}

void AacEncoder::receive(const PacketSink& sink) {
    while (auto packet = channels_[0].coder->nextPacket()) {
        std::optional<AacPacket> second;
        std::array<std::span<const std::uint8_t>, 2> contents{packet->bytes, packet->bytes};
        if (coders_ == 2) {
            second = channels_[1].coder->nextPacket();
            if (!second) {
                throw std::runtime_error("The AAC coders are out of step.");
            }
            contents[1] = second->bytes;
        }
        for (std::size_t channel = 0; channel < contents.size(); ++channel) {
            windowEnds_[channel] = windowEndOf(contents[channel]);
        }
        packet->bytes = joinChannels(std::span(contents).first(channels_.size()), gainSteps);
        sink(std::move(*packet));
    }
}

} // namespace vantoro::media

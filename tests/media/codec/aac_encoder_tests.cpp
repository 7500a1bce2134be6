// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/codec/aac_encoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "media/codec/aac.h"
#include "platform/ffmpeg/ffmpeg_codec.h"
#include "tests/media/support/test_sounds.h"

namespace vantoro::testing {
namespace {

using namespace media;

using Samples = std::vector<float>;
using Packets = std::vector<std::vector<std::uint8_t>>;

constexpr int bitRatePerChannel = 96000;

Packets encode(const std::vector<Sound>& sounds, std::int64_t frames) {
    AacEncoder encoder(ffmpeg::codec(), static_cast<int>(sounds.size()),
                       bitRatePerChannel * static_cast<int>(sounds.size()));
    Packets packets;
    const auto keep = [&](AacPacket packet) { packets.push_back(std::move(packet.bytes)); };
    for (std::int64_t done = 0; done < frames; done += packetFrames) {
        for (int channel = 0; channel < encoder.channels(); ++channel) {
            std::ranges::generate(encoder.plane(channel), [&, frame = done]() mutable {
                return sounds[static_cast<std::size_t>(channel)](frame++);
            });
        }
        encoder.encode(static_cast<int>(std::min<std::int64_t>(packetFrames, frames - done)), keep);
    }
    encoder.finish(keep);
    return packets;
}

/// Both channels, without the priming.
std::pair<Samples, Samples> decodePackets(const Packets& packets, int channels) {
    const AacEncoder encoder(ffmpeg::codec(), channels, bitRatePerChannel * channels);
    const auto decoder = ffmpeg::codec().makeDecoder(encoder.track());
    std::pair<Samples, Samples> sound;
    for (const auto& packet : packets) {
        const auto decoded = decoder->decode(std::as_bytes(std::span(packet)));
        if (!decoded) {
            ADD_FAILURE() << "a packet makes no sense";
            continue;
        }
        sound.first.insert(sound.first.end(), decoded->left.begin(), decoded->left.end());
        sound.second.insert(sound.second.end(), decoded->right.begin(), decoded->right.end());
    }
    for (Samples* samples : {&sound.first, &sound.second}) {
        samples->erase(samples->begin(), samples->begin() + primingFrames);
    }
    return sound;
}

/// The energy of the encoding noise in each 1024 frames.
std::vector<double> errors(const Samples& samples, const Sound& original, std::int64_t frames) {
    std::vector<double> result(static_cast<std::size_t>(frames / packetFrames));
    for (std::size_t i = 0; i < result.size() * packetFrames; ++i) {
        const double error = samples[i] - original(static_cast<std::int64_t>(i));
        result[i / packetFrames] += error * error;
    }
    return result;
}

/// Two strings with occasional strokes, so that the encoder switches windows.
Sound music() {
    static const Samples samples = [] {
        std::vector<std::int64_t> strokes;
        for (std::int64_t at = 3000; at < 640'000; at += 7919) {
            strokes.push_back(at);
        }
        const Sound low = tone(440, 0.1F);
        const Sound high = tone(1234, 0.1F);
        const Sound stroke = clicks(std::move(strokes));
        Samples made(640'000);
        std::ranges::generate(made, [&, frame = std::int64_t{0}]() mutable {
            const float sample = low(frame) + high(frame) + (0.3F * stroke(frame));
            ++frame;
            return sample;
        });
        return made;
    }();
    return [](std::int64_t frame) { return samples[static_cast<std::size_t>(frame)]; };
}

/// One sound, then another between two frames, then the first again.
Sound interrupted(const Sound& sound, const Sound& by, std::int64_t from, std::int64_t to) {
    return
        [=](std::int64_t frame) { return frame >= from && frame < to ? by(frame) : sound(frame); };
}

TEST(AacEncoder, identicalChannelsAreCodedOnce) {
    const std::int64_t frames = 30 * packetFrames + 100;
    const auto alone = decodePackets(encode({music()}, frames), 1);
    const auto both = decodePackets(encode({music(), music()}, frames), 2);
    EXPECT_EQ(both.first, alone.first);
    EXPECT_EQ(both.second, alone.first);
}

TEST(AacEncoder, channelsThatDivergeAndConvergeSoundAsGoodAsAlone) {
    const std::int64_t frames = 110LL * packetFrames;
    for (const std::int64_t from : {1, 1024, 5000, 20 * 1024 + 512}) {
        for (const std::int64_t length : {1, 2048, 20'000}) {
            const Sound left = music();
            const Sound right = interrupted(left, tone(700, 0.2F), from, from + length);
            const auto joined = decodePackets(encode({left, right}, frames), 2);
            const auto apart = decodePackets(encode({right}, frames), 1);
            const auto found = errors(joined.second, right, frames);
            const auto usual = errors(apart.first, right, frames);
            for (std::size_t i = 0; i < found.size(); ++i) {
                EXPECT_LT(found[i], (1.5 * usual[i]) + 1e-4)
                    << "parted at " << from << " for " << length << ", packet " << i;
            }
            EXPECT_EQ(joined.first, decodePackets(encode({left}, frames), 1).first);
        }
    }
}

TEST(AacEncoder, channelsThatDivergeOftenStayInStep) {
    const std::int64_t frames = 600LL * packetFrames;
    const Sound left = music();
    const Sound right = [left, other = tone(700, 0.2F)](std::int64_t frame) {
        return frame / 50'000 % 2 == 1 && frame % 50'000 < 1500 ? other(frame) : left(frame);
    };
    const auto joined = decodePackets(encode({left, right}, frames), 2);
    const auto found = errors(joined.second, right, frames);
    const auto usual = errors(decodePackets(encode({right}, frames), 1).first, right, frames);
    for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_LT(found[i], (1.5 * usual[i]) + 1e-4) << "packet " << i;
    }
}

TEST(ChannelSharing, beginsSharedAndEndsWithTheFirstDifference) {
    ChannelSharing sharing;
    EXPECT_TRUE(sharing.next(true));
    EXPECT_FALSE(sharing.next(false));
    EXPECT_FALSE(sharing.next(true));
}

TEST(ChannelSharing, differentFromTheFirstPacketOnIsNeverShared) {
    ChannelSharing sharing;
    EXPECT_FALSE(sharing.next(false));
    EXPECT_FALSE(sharing.next(true));
}

TEST(ChannelSharing, isSharedAgainAfterASecondWithoutADifference) {
    ChannelSharing sharing;
    sharing.next(false);
    for (int packet = 0; packet < ChannelSharing::packetsUntilShared; ++packet) {
        EXPECT_FALSE(sharing.next(true)) << packet;
    }
    EXPECT_TRUE(sharing.next(true));
    EXPECT_TRUE(sharing.next(true));
}

} // namespace
} // namespace vantoro::testing

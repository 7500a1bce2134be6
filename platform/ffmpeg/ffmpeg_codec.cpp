// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/ffmpeg/ffmpeg_codec.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/mem.h>
#include <libavutil/opt.h>
}

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <stdexcept>

#include "engine/failure.h"
#include "platform/ffmpeg/handles.h"

namespace vantoro::ffmpeg {

namespace {

using media::framesPerSecond;
using media::packetFrames;

constexpr const char* encoderName = "aac";

// Constant quality: each packet has the same limit and uses fewer bits for simple sounds. With an
// average bit rate the encoder would encode packets up to five times, and spend the bits saved in
// pauses on sounds that do not benefit. 120 gives the rate itself as the limit, which the encoder
// does not use up.
constexpr int shareOfRate = 140;

// As the encoder chooses for the sources' average bit rates; so the mix has nothing above.
constexpr int highestFrequency = 18000;

CodecHandle openEncoder(int bitRate) {
    const AVCodec* const codec = avcodec_find_encoder_by_name(encoderName);
    if (codec == nullptr) {
        throw Failure(FailureCode::encoderMissing);
    }
    CodecHandle encoder(checkAllocated(avcodec_alloc_context3(codec)));
    encoder->sample_rate = framesPerSecond;
    encoder->sample_fmt = AV_SAMPLE_FMT_FLTP;
    encoder->bit_rate = bitRate;
    encoder->global_quality = shareOfRate;
    encoder->cutoff = highestFrequency;
    encoder->time_base = {1, framesPerSecond};
    encoder->thread_count = 1;
    // The files keep the configuration apart from the packets, which hold only sound.
    encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER | AV_CODEC_FLAG_BITEXACT | AV_CODEC_FLAG_QSCALE;
    av_channel_layout_default(&encoder->ch_layout, 1);
    void* const options = encoder->priv_data;
    check(av_opt_set(options, "aac_coder", "fast", 0), "Choosing the AAC coder's method");
    // At these rates the bits for noise shaping are better spent on the sound.
    check(av_opt_set_int(options, "aac_tns", 0, 0), "Switching the AAC coder's noise shaping off");
    check(av_opt_set_int(options, "aac_pns", 0, 0), "Switching the AAC coder's noise filling off");
    check(av_opt_set_int(options, "aac_is", 0, 0), "Switching the AAC coder's joint stereo off");
    check(avcodec_open2(encoder.get(), codec, nullptr), "Opening the AAC coder");
    if (encoder->frame_size != packetFrames || encoder->initial_padding != media::primingFrames) {
        throw std::runtime_error("The AAC coder works with packets of another size.");
    }
    return encoder;
}

FrameHandle makeFrame(const AVCodecContext& encoder) {
    FrameHandle frame(checkAllocated(av_frame_alloc()));
    frame->format = encoder.sample_fmt;
    frame->sample_rate = encoder.sample_rate;
    frame->nb_samples = packetFrames;
    check(av_channel_layout_copy(&frame->ch_layout, &encoder.ch_layout), "Preparing to code");
    check(av_frame_get_buffer(frame.get(), 0), "Preparing to code");
    return frame;
}

class FfmpegChannelEncoder final : public media::ChannelEncoder {
public:
    explicit FfmpegChannelEncoder(int bitRate) : encoder_(openEncoder(bitRate)) {}

    std::vector<std::byte> configuration() const override {
        const auto bytes = std::as_bytes(
            std::span(encoder_->extradata, static_cast<std::size_t>(encoder_->extradata_size)));
        return {bytes.begin(), bytes.end()};
    }

    void encode(std::span<const float> samples) override {
        // The encoder may still use the previous samples; this allocates a new buffer then.
        frame_->nb_samples = packetFrames;
        check(av_frame_make_writable(frame_.get()), "Coding sound");
        // A plane is declared as bytes but is allocated for floats.
        void* const plane = frame_->extended_data[0];
        std::ranges::copy(samples, static_cast<float*>(plane));
        frame_->nb_samples = static_cast<int>(samples.size());
        frame_->pts = position_;
        check(avcodec_send_frame(encoder_.get(), frame_.get()), "Coding sound");
        position_ += frame_->nb_samples;
    }

    void finish() override {
        check(avcodec_send_frame(encoder_.get(), nullptr), "Coding the end of the sound");
    }

    std::optional<media::AacPacket> nextPacket() override {
        const int result = avcodec_receive_packet(encoder_.get(), packet_.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) {
            return std::nullopt;
        }
        check(result, "Coding sound");
        const std::span content(packet_->data, static_cast<std::size_t>(packet_->size));
        media::AacPacket packet{.bytes = {content.begin(), content.end()},
                                .start = packet_->pts,
                                .frames = packet_->duration};
        av_packet_unref(packet_.get());
        return packet;
    }

private:
    CodecHandle encoder_;
    FrameHandle frame_{makeFrame(*encoder_)};
    PacketHandle packet_{checkAllocated(av_packet_alloc())};
    std::int64_t position_ = 0; // frames given to the encoder
};

/// The decoder may read past the end, hence the padding; it takes ownership.
void setConfiguration(AVCodecContext& decoder, const std::vector<std::byte>& configuration) {
    decoder.extradata = static_cast<std::uint8_t*>(
        checkAllocated(av_mallocz(configuration.size() + AV_INPUT_BUFFER_PADDING_SIZE)));
    decoder.extradata_size = static_cast<int>(configuration.size());
    std::ranges::copy(
        configuration,
        std::as_writable_bytes(std::span(decoder.extradata, configuration.size())).begin());
}

CodecHandle openDecoder(const media::AacTrack& track) {
    const AVCodec* const codec = avcodec_find_decoder(AV_CODEC_ID_AAC);
    if (codec == nullptr) {
        throw Failure(FailureCode::decoderMissing);
    }
    CodecHandle decoder(checkAllocated(avcodec_alloc_context3(codec)));
    decoder->sample_rate = media::framesPerSecond;
    av_channel_layout_default(&decoder->ch_layout, track.channels);
    setConfiguration(*decoder, track.decoderConfiguration);
    decoder->thread_count = 1;
    check(avcodec_open2(decoder.get(), codec, nullptr), "Opening the AAC decoder");
    return decoder;
}

std::span<const float, packetFrames> planeOf(const AVFrame& frame, int channel) {
    // A plane is declared as bytes but holds floats in this format.
    const void* const samples = frame.extended_data[channel];
    return std::span<const float, packetFrames>(static_cast<const float*>(samples), packetFrames);
}

/// A damaged packet may decode to non-finite samples, which would spoil the mix.
bool isFinite(std::span<const float> samples) {
    return std::isfinite(std::accumulate(samples.begin(), samples.end(), 0.0F));
}

class FfmpegDecoder final : public media::AacDecoder {
public:
    explicit FfmpegDecoder(const media::AacTrack& track) : decoder_(openDecoder(track)) {}

    std::optional<media::DecodedSound> decode(std::span<const std::byte> packet) override {
        check(av_new_packet(packet_.get(), static_cast<int>(packet.size())), "Decoding sound");
        std::ranges::copy(packet,
                          std::as_writable_bytes(std::span(packet_->data, packet.size())).begin());
        const int sent = avcodec_send_packet(decoder_.get(), packet_.get());
        av_packet_unref(packet_.get());
        if (sent < 0 || avcodec_receive_frame(decoder_.get(), frame_.get()) < 0) {
            return std::nullopt;
        }
        const int channels = frame_->ch_layout.nb_channels;
        if (frame_->format != AV_SAMPLE_FMT_FLTP || frame_->nb_samples != packetFrames ||
            channels < 1) {
            return std::nullopt;
        }
        const media::DecodedSound sound{.left = planeOf(*frame_, 0),
                                        .right = planeOf(*frame_, channels > 1 ? 1 : 0)};
        if (!isFinite(sound.left) || !isFinite(sound.right)) {
            return std::nullopt;
        }
        return sound;
    }

    void reset() noexcept override { avcodec_flush_buffers(decoder_.get()); }

private:
    CodecHandle decoder_;
    PacketHandle packet_{checkAllocated(av_packet_alloc())};
    FrameHandle frame_{checkAllocated(av_frame_alloc())};
};

class FfmpegCodec final : public media::AacCodec {
public:
    bool hasEncoder() const noexcept override {
        return avcodec_find_encoder_by_name(encoderName) != nullptr;
    }

    std::unique_ptr<media::ChannelEncoder> makeChannelEncoder(int bitRate) const override {
        return std::make_unique<FfmpegChannelEncoder>(bitRate);
    }

    std::unique_ptr<media::AacDecoder> makeDecoder(const media::AacTrack& track) const override {
        return std::make_unique<FfmpegDecoder>(track);
    }
};

} // namespace

const media::AacCodec& codec() noexcept {
    static const FfmpegCodec instance;
    return instance;
}

} // namespace vantoro::ffmpeg

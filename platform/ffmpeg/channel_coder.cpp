// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/ffmpeg/channel_coder.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
}

#include <algorithm>
#include <stdexcept>

#include "engine/failure.h"

namespace vantoro::ffmpeg {

namespace {

using media::framesPerSecond;
using media::packetFrames;
using media::primingFrames;

// Constant quality: each packet has the same limit and uses fewer bits for simple sounds. With an
// average bit rate the coder would code packets up to five times, and spend the bits saved in
// pauses on sounds that do not benefit. 120 gives the rate itself as the limit, which the coder
// does not use up.
constexpr int shareOfRate = 140;

// As the coder chooses for the sources' average bit rates; so the mix has nothing above.
constexpr int highestFrequency = 18000;

const AVCodec* findCoder() noexcept {
    return avcodec_find_encoder_by_name("aac");
}

CoderHandle openCoder(int bitRate) {
    const AVCodec* const codec = findCoder();
    if (codec == nullptr) {
        throw Failure(FailureCode::coderMissing);
    }
    CoderHandle coder(checkAllocated(avcodec_alloc_context3(codec)));
    coder->sample_rate = framesPerSecond;
    coder->sample_fmt = AV_SAMPLE_FMT_FLTP;
    coder->bit_rate = bitRate;
    coder->global_quality = shareOfRate;
    coder->cutoff = highestFrequency;
    coder->time_base = {1, framesPerSecond};
    coder->thread_count = 1;
    // The files keep the configuration apart from the packets, which hold only sound.
    coder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER | AV_CODEC_FLAG_BITEXACT | AV_CODEC_FLAG_QSCALE;
    av_channel_layout_default(&coder->ch_layout, 1);
    void* const options = coder->priv_data;
    check(av_opt_set(options, "aac_coder", "fast", 0), "Choosing the AAC coder's method");
    // At these rates the bits for noise shaping are better spent on the sound.
    check(av_opt_set_int(options, "aac_tns", 0, 0), "Switching the AAC coder's noise shaping off");
    check(av_opt_set_int(options, "aac_pns", 0, 0), "Switching the AAC coder's noise filling off");
    check(av_opt_set_int(options, "aac_is", 0, 0), "Switching the AAC coder's joint stereo off");
    check(avcodec_open2(coder.get(), codec, nullptr), "Opening the AAC coder");
    if (coder->frame_size != packetFrames || coder->initial_padding != primingFrames) {
        throw std::runtime_error("The AAC coder works with packets of another size.");
    }
    return coder;
}

FrameHandle makeFrame(const AVCodecContext& coder) {
    FrameHandle frame(checkAllocated(av_frame_alloc()));
    frame->format = coder.sample_fmt;
    frame->sample_rate = coder.sample_rate;
    frame->nb_samples = packetFrames;
    check(av_channel_layout_copy(&frame->ch_layout, &coder.ch_layout), "Preparing to code");
    check(av_frame_get_buffer(frame.get(), 0), "Preparing to code");
    return frame;
}

} // namespace

FfmpegChannelCoder::FfmpegChannelCoder(int bitRate)
    : coder_(openCoder(bitRate)),
      frame_(makeFrame(*coder_)),
      packet_(checkAllocated(av_packet_alloc())) {}

std::vector<std::byte> FfmpegChannelCoder::configuration() const {
    const auto bytes = std::as_bytes(
        std::span(coder_->extradata, static_cast<std::size_t>(coder_->extradata_size)));
    return {bytes.begin(), bytes.end()};
}

void FfmpegChannelCoder::code(std::span<const float> samples) {
    // The coder may still use the previous samples; this allocates a new buffer then.
    frame_->nb_samples = packetFrames;
    check(av_frame_make_writable(frame_.get()), "Coding sound");
    // A plane is declared as bytes but is allocated for floats.
    void* const plane = frame_->extended_data[0];
    std::ranges::copy(samples, static_cast<float*>(plane));
    frame_->nb_samples = static_cast<int>(samples.size());
    frame_->pts = position_;
    check(avcodec_send_frame(coder_.get(), frame_.get()), "Coding sound");
    position_ += frame_->nb_samples;
}

void FfmpegChannelCoder::finish() {
    check(avcodec_send_frame(coder_.get(), nullptr), "Coding the end of the sound");
}

std::optional<media::AacPacket> FfmpegChannelCoder::nextPacket() {
    const int result = avcodec_receive_packet(coder_.get(), packet_.get());
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

bool hasAacCoder() noexcept {
    return findCoder() != nullptr;
}

} // namespace vantoro::ffmpeg

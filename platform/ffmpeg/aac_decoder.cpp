// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/ffmpeg/aac_decoder.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/mem.h>
}

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <vector>

#include "engine/failure.h"

namespace vantoro::ffmpeg {

namespace {

using media::packetFrames;

/// The decoder may read past the end, hence the padding; it takes ownership.
void setConfiguration(AVCodecContext& decoder, const std::vector<std::byte>& configuration) {
    decoder.extradata = static_cast<std::uint8_t*>(
        checkAllocated(av_mallocz(configuration.size() + AV_INPUT_BUFFER_PADDING_SIZE)));
    decoder.extradata_size = static_cast<int>(configuration.size());
    std::ranges::copy(
        configuration,
        std::as_writable_bytes(std::span(decoder.extradata, configuration.size())).begin());
}

CoderHandle openDecoder(const media::AacTrack& track) {
    const AVCodec* const codec = avcodec_find_decoder(AV_CODEC_ID_AAC);
    if (codec == nullptr) {
        throw Failure(FailureCode::decoderMissing);
    }
    CoderHandle decoder(checkAllocated(avcodec_alloc_context3(codec)));
    decoder->sample_rate = media::framesPerSecond;
    av_channel_layout_default(&decoder->ch_layout, track.channels);
    setConfiguration(*decoder, track.coderConfiguration);
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

} // namespace

FfmpegDecoder::FfmpegDecoder(const media::AacTrack& track)
    : decoder_(openDecoder(track)),
      packet_(checkAllocated(av_packet_alloc())),
      frame_(checkAllocated(av_frame_alloc())) {}

std::optional<media::DecodedSound> FfmpegDecoder::decode(std::span<const std::byte> packet) {
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

void FfmpegDecoder::reset() noexcept {
    avcodec_flush_buffers(decoder_.get());
}

} // namespace vantoro::ffmpeg

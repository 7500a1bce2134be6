// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/ffmpeg/aac_encoder.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
}

#include <algorithm>
#include <array>
#include <iterator>
#include <stdexcept>

#include "platform/ffmpeg/aac.h"
#include "platform/ffmpeg/aac_packet.h"

namespace vantoro::ffmpeg {

namespace {

// Even the loudest tone that fits below full scale is coded well at this volume; the packets carry
// the same number of steps the other way.
constexpr unsigned gainSteps = 6;
constexpr float codingVolume = 0.35355339F; // 2 to the power of -6/4

// Each packet may take as many bits as the next, and takes less where less is to be described.
// Asked for an average instead, the coder tries packets up to five times, and gives what it spares
// in pauses to sounds that gain nothing by it. 120 is the rate itself, before what the coder
// leaves.
constexpr int shareOfRate = 140;

// As for an average of the sources' rates; in their mix there is nothing above then.
constexpr int highestFrequency = 18000;

const AVCodec* findCoder() noexcept {
    return avcodec_find_encoder_by_name("aac");
}

CoderHandle openCoder(int bitRate) {
    const AVCodec* const codec = findCoder();
    if (codec == nullptr) {
        throw std::runtime_error("There is no AAC coder on this system.");
    }
    CoderHandle coder(checkAllocated(avcodec_alloc_context3(codec)));
    coder->sample_rate = framesPerSecond;
    coder->sample_fmt = AV_SAMPLE_FMT_FLTP;
    coder->bit_rate = bitRate;
    coder->global_quality = shareOfRate;
    coder->cutoff = highestFrequency;
    coder->time_base = {1, framesPerSecond};
    coder->thread_count = 1;
    // The files keep the coder's description apart from its packets, and those hold sound alone.
    coder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER | AV_CODEC_FLAG_BITEXACT | AV_CODEC_FLAG_QSCALE;
    av_channel_layout_default(&coder->ch_layout, 1);
    void* const options = coder->priv_data;
    check(av_opt_set(options, "aac_coder", "fast", 0), "Choosing the AAC coder's method");
    // At these rates its bits describe more than its shaping hides.
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

std::span<float> samplesOf(AVFrame& frame) noexcept {
    // A plane is only known as bytes, but was allocated for floats.
    void* const samples = frame.extended_data[0];
    return {static_cast<float*>(samples), static_cast<std::size_t>(packetFrames)};
}

void send(AVCodecContext& coder, AVFrame& frame, int frames, std::int64_t position) {
    frame.nb_samples = frames;
    frame.pts = position;
    check(avcodec_send_frame(&coder, &frame), "Coding sound");
}

/// As one channel's coder describes it, but for the number of channels.
ParametersHandle makeParameters(const AVCodecContext& coder, int channels, int bitRate) {
    ParametersHandle parameters(checkAllocated(avcodec_parameters_alloc()));
    check(avcodec_parameters_from_context(parameters.get(), &coder), "Preparing to code");
    av_channel_layout_default(&parameters->ch_layout, channels);
    parameters->bit_rate = bitRate;
    if (parameters->extradata_size < 2) {
        throw std::runtime_error("The AAC coder does not describe its packets.");
    }
    // 5 bits of kind, 4 of rate, 4 of channels.
    constexpr unsigned channelBits = 0x78;
    std::uint8_t& field = parameters->extradata[1];
    field =
        static_cast<std::uint8_t>((field & ~channelBits) | static_cast<unsigned>(channels) << 3U);
    return parameters;
}

std::span<const std::uint8_t> contentOf(const AVPacket& packet) noexcept {
    return {packet.data, static_cast<std::size_t>(packet.size)};
}

} // namespace

AacEncoder::AacEncoder(int channels, int bitRate, int packetsAhead)
    : coders_(static_cast<std::size_t>(channels)), joined_(checkAllocated(av_packet_alloc())) {
    if (channels < 1 || channels > 2) {
        throw std::invalid_argument("Sound has one channel or two.");
    }
    for (int channel = 0; channel < channels; ++channel) {
        CoderHandle coder = openCoder(bitRate / channels);
        std::vector<FrameHandle> frames;
        std::generate_n(std::back_inserter(frames), packetsAhead,
                        [&coder] { return makeFrame(*coder); });
        channels_.push_back({.coder = std::move(coder),
                             .frames = std::move(frames),
                             .packet = PacketHandle(checkAllocated(av_packet_alloc()))});
    }
    parameters_ = makeParameters(*channels_[0].coder, channels, bitRate);
}

bool AacEncoder::isAvailable() noexcept {
    return findCoder() != nullptr;
}

std::span<float> AacEncoder::plane(int channel, int packetsLater) noexcept {
    const auto& frames = channels_[static_cast<std::size_t>(channel)].frames;
    return samplesOf(*frames[(next_ + static_cast<std::size_t>(packetsLater)) % frames.size()]);
}

void AacEncoder::encode(int frames, const PacketSink& sink) {
    for (int index = 0; index < channels(); ++index) {
        for (float& sample : plane(index).first(static_cast<std::size_t>(frames))) {
            sample *= codingVolume;
        }
    }
    shareOrCatchUp(frames);
    for (const Channel& channel : std::span(channels_).first(coders_)) {
        send(*channel.coder, *channel.frames[next_], frames, position_);
    }
    position_ += frames;
    receive(sink);
    for (const Channel& channel : channels_) {
        // The coder may hold on to the samples; then the next ones go elsewhere.
        AVFrame& frame = *channel.frames[next_];
        frame.nb_samples = packetFrames;
        check(av_frame_make_writable(&frame), "Coding sound");
    }
    next_ = (next_ + 1) % channels_[0].frames.size();
}

void AacEncoder::finish(const PacketSink& sink) {
    for (const Channel& channel : std::span(channels_).first(coders_)) {
        check(avcodec_send_frame(channel.coder.get(), nullptr), "Coding the end of the sound");
    }
    receive(sink);
}

/// Decides how many coders the next packet takes, and prepares the second one when it is needed
/// again.
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
        return; // the last of all
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
    const Channel& second = channels_[1];
    auto position = position_ - static_cast<std::int64_t>(missed_.size()) * packetFrames;
    for (const std::vector<float>& samples : missed_) {
        const FrameHandle frame = makeFrame(*second.coder);
        std::ranges::copy(samples, samplesOf(*frame).begin());
        send(*second.coder, *frame, packetFrames, position);
        position += packetFrames;
        int result = 0;
        while ((result = avcodec_receive_packet(second.coder.get(), second.packet.get())) == 0) {
            av_packet_unref(second.packet.get()); // the first coder gave one in its place
        }
        if (result != AVERROR(EAGAIN)) {
            check(result, "Coding sound");
        }
    }
    missed_.clear();
}

void AacEncoder::receive(const PacketSink& sink) {
    for (;;) {
        std::array<std::span<const std::uint8_t>, 2> contents;
        for (std::size_t index = 0; index < coders_; ++index) {
            const Channel& channel = channels_[index];
            const int result = avcodec_receive_packet(channel.coder.get(), channel.packet.get());
            // All channels' coders go in step, so only the first one can have nothing.
            if (index == 0 && (result == AVERROR(EAGAIN) || result == AVERROR_EOF)) {
                return;
            }
            check(result, "Coding sound");
            contents[index] = contentOf(*channel.packet);
            windowEnds_[index] = windowEndOf(contents[index]);
        }
        std::ranges::fill(std::span(contents).subspan(coders_), contents[0]);
        std::ranges::fill(std::span(windowEnds_).subspan(coders_), windowEnds_[0]);
        const auto content = joinChannels(std::span(contents).first(channels_.size()), gainSteps);
        check(av_new_packet(joined_.get(), static_cast<int>(content.size())), "Coding sound");
        std::ranges::copy(content, joined_->data);
        check(av_packet_copy_props(joined_.get(), channels_[0].packet.get()), "Coding sound");
        sink(*joined_);
        av_packet_unref(joined_.get());
    }
}

} // namespace vantoro::ffmpeg

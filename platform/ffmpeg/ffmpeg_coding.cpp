// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/ffmpeg/ffmpeg_coding.h"

#include "platform/ffmpeg/aac_decoder.h"
#include "platform/ffmpeg/channel_coder.h"

namespace vantoro::ffmpeg {

namespace {

class FfmpegCoding final : public media::Coding {
public:
    bool hasCoder() const noexcept override { return hasAacCoder(); }

    std::unique_ptr<media::ChannelCoder> makeChannelCoder(int bitRate) const override {
        return std::make_unique<FfmpegChannelCoder>(bitRate);
    }

    std::unique_ptr<media::AacDecoder> makeDecoder(const media::AacTrack& track) const override {
        return std::make_unique<FfmpegDecoder>(track);
    }
};

} // namespace

const media::Coding& coding() noexcept {
    static const FfmpegCoding instance;
    return instance;
}

} // namespace vantoro::ffmpeg

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "media/coding/coding.h"
#include "platform/ffmpeg/handles.h"

namespace vantoro::ffmpeg {

/// libavcodec's AAC coder for one channel, with its fast method.
class FfmpegChannelCoder final : public media::ChannelCoder {
public:
    /// Throws std::runtime_error if it cannot be opened.
    explicit FfmpegChannelCoder(int bitRate);

    std::vector<std::byte> configuration() const override;
    void code(std::span<const float> samples) override;
    void finish() override;
    std::optional<media::AacPacket> nextPacket() override;

private:
    CoderHandle coder_;
    FrameHandle frame_;
    PacketHandle packet_;
    std::int64_t position_ = 0; // frames given to the coder
};

/// Whether the library was built with the coder.
bool hasAacCoder() noexcept;

} // namespace vantoro::ffmpeg

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "media/coding/coding.h"
#include "platform/ffmpeg/handles.h"

namespace vantoro::ffmpeg {

/// libavcodec's AAC decoder.
class FfmpegDecoder final : public media::AacDecoder {
public:
    /// Throws std::runtime_error if it cannot be opened.
    explicit FfmpegDecoder(const media::AacTrack& track);

    std::optional<media::DecodedSound> decode(std::span<const std::byte> packet) override;
    void reset() noexcept override;

private:
    CoderHandle decoder_;
    PacketHandle packet_;
    FrameHandle frame_;
};

} // namespace vantoro::ffmpeg

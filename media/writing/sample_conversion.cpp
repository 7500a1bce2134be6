// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/writing/sample_conversion.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <variant>

#include "media/coding/aac.h"

namespace vantoro::media {

namespace {

float toFloat(float sample) noexcept {
    return std::isfinite(sample) ? sample : 0.0F;
}

float toFloat(std::int16_t sample) noexcept {
    return static_cast<float>(sample) / 32768.0F;
}

float toFloat(std::int32_t sample) noexcept {
    return static_cast<float>(sample) / 2147483648.0F;
}

} // namespace

bool fitsTrack(const SampleBuffer& buffer, int channels) noexcept {
    if (!buffer.format || buffer.frameCount < 0 || buffer.format->sampleRate != framesPerSecond ||
        buffer.format->channelsPerFrame != static_cast<std::uint32_t>(channels)) {
        return false;
    }
    const std::size_t size =
        std::visit([](const auto& samples) { return samples.size(); }, buffer.samples);
    const auto channelCount = static_cast<std::size_t>(channels);
    return size % channelCount == 0 &&
           size / channelCount == static_cast<std::size_t>(buffer.frameCount);
}

void copySamples(const SampleBuffer& buffer, int channel, std::int64_t firstFrame,
                 std::span<float> into) noexcept {
    const auto offset = static_cast<std::size_t>((channel * buffer.frameCount) + firstFrame);
    std::visit(
        [&](const auto& samples) {
            std::ranges::transform(samples.subspan(offset, into.size()), into.begin(),
                                   [](auto sample) { return toFloat(sample); });
        },
        buffer.samples);
}

} // namespace vantoro::media

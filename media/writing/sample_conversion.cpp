// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/writing/sample_conversion.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "media/coding/aac.h"

namespace vantoro::media {

namespace {

float finiteOrSilence(float sample) noexcept {
    return std::isfinite(sample) ? sample : 0.0F;
}

} // namespace

bool fitsTrack(const SampleBuffer& buffer, int channels) noexcept {
    if (!buffer.format || buffer.frameCount < 0 || buffer.format->sampleRate != framesPerSecond ||
        buffer.format->channelsPerFrame != static_cast<std::uint32_t>(channels)) {
        return false;
    }
    const std::size_t size = buffer.samples.size();
    const auto channelCount = static_cast<std::size_t>(channels);
    return size % channelCount == 0 &&
           size / channelCount == static_cast<std::size_t>(buffer.frameCount);
}

void copySamples(const SampleBuffer& buffer, int channel, std::int64_t firstFrame,
                 std::span<float> into) noexcept {
    const auto offset = static_cast<std::size_t>((channel * buffer.frameCount) + firstFrame);
    std::ranges::transform(buffer.samples.subspan(offset, into.size()), into.begin(),
                           finiteOrSilence);
}

} // namespace vantoro::media

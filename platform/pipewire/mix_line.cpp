// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/mix_line.h"

#include <algorithm>
#include <cmath>

namespace vantoro::pipewire {

void MixLine::moveFront(std::int64_t position) {
    front_ = position;
    taken_ = 0;
    line_.clear();
}

void MixLine::add(std::int64_t position, std::span<const float> samples) {
    if (position < front_) {
        const auto over = static_cast<std::size_t>(front_ - position) * channels_;
        samples = samples.subspan(std::min(over, samples.size()));
        position = front_;
    }
    if (samples.empty()) {
        return;
    }
    const std::size_t start = (taken_ + static_cast<std::size_t>(position - front_)) * channels_;
    if (line_.size() < start + samples.size()) {
        line_.resize(start + samples.size());
    }
    float* target = line_.data() + start;
    for (const float sample : samples) {
        *target++ += std::isfinite(sample) ? sample : 0.0F;
    }
}

std::span<const float> MixLine::take(std::size_t frames) {
    planes_.assign(frames * channels_, 0.0F);
    const std::size_t held = line_.size() / channels_ - taken_;
    const std::size_t copied = std::min(frames, held);
    const float* const first = line_.data() + (taken_ * channels_);
    for (std::size_t channel = 0; channel < channels_; ++channel) {
        for (std::size_t frame = 0; frame < copied; ++frame) {
            planes_[(channel * frames) + frame] = first[(frame * channels_) + channel];
        }
    }
    taken_ += copied;
    front_ += static_cast<std::int64_t>(frames);
    // Moving the rest forward only once half is over keeps a long backlog linear.
    if (taken_ * 2 * channels_ >= line_.size()) {
        line_.erase(line_.begin(), line_.begin() + static_cast<std::ptrdiff_t>(taken_ * channels_));
        taken_ = 0;
    }
    return planes_;
}

} // namespace vantoro::pipewire

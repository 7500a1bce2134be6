// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/samples/mix_line.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace vantoro::capture {

namespace {

float finiteOrZero(float sample) {
    return std::isfinite(sample) ? sample : 0.0F;
}

} // namespace

void MixLine::moveFront(std::int64_t position) {
    front_ = position;
    taken_ = 0;
    for (auto& line : lines_) {
        line.clear();
    }
}

void MixLine::add(std::int64_t position, Planes planes) {
    const std::size_t frames = planes[0].size();
    const auto over = static_cast<std::size_t>(std::max<std::int64_t>(0, front_ - position));
    if (over >= frames) {
        return;
    }
    const std::size_t start =
        taken_ + static_cast<std::size_t>(std::max<std::int64_t>(0, position - front_));
    const std::size_t end = std::max(lines_[0].size(), start + frames - over);
    for (std::size_t channel = 0; channel < lines_.size(); ++channel) {
        auto& line = lines_[channel];
        line.resize(end);
        const auto samples = planes[channel].subspan(over);
        std::transform(samples.begin(), samples.end(),
                       line.begin() + static_cast<std::ptrdiff_t>(start),
                       line.begin() + static_cast<std::ptrdiff_t>(start),
                       [](float sample, float sum) { return sum + finiteOrZero(sample); });
    }
}

std::span<const float> MixLine::take(std::size_t frames) {
    const std::size_t copied = std::min(frames, lines_[0].size() - taken_);
    // Moving the rest only when half is taken keeps a long backlog linear.
    const std::size_t over = taken_ + copied;
    const bool halfIsOver = over * 2 >= lines_[0].size();
    block_.assign(frames * lines_.size(), 0.0F);
    for (std::size_t channel = 0; channel < lines_.size(); ++channel) {
        auto& line = lines_[channel];
        const auto first = line.begin() + static_cast<std::ptrdiff_t>(taken_);
        std::copy_n(first, copied, block_.begin() + static_cast<std::ptrdiff_t>(channel * frames));
        if (halfIsOver) {
            line.erase(line.begin(), first + static_cast<std::ptrdiff_t>(copied));
        }
    }
    taken_ = halfIsOver ? 0 : over;
    front_ += static_cast<std::int64_t>(frames);
    return block_;
}

} // namespace vantoro::capture

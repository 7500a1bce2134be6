// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/channel_fold.h"

#include <algorithm>

namespace vantoro::pipewire {

namespace {

using Channels = std::vector<std::string_view>;

bool hasNoPlace(std::string_view channel) {
    return channel.empty() || channel == "UNK" || channel.starts_with("AUX");
}

bool isLow(std::string_view channel) {
    return channel.starts_with("LFE");
}

Channels placedChannel(std::string_view channel, bool hasFrontPair) {
    if (channel == "FC" || channel == "MONO") {
        return hasFrontPair ? Channels{"SL", "SR"} : Channels{"FL", "FR"};
    }
    if (isLow(channel)) {
        return {};
    }
    if (channel == "FL" || channel == "FLC" || channel == "FLW" || channel == "FLH") {
        return {"FL"};
    }
    if (channel == "FR" || channel == "FRC" || channel == "FRW" || channel == "FRH") {
        return {"FR"};
    }
    if (channel.ends_with('L')) {
        return {"SL"};
    }
    if (channel.ends_with('R')) {
        return {"SR"};
    }
    return {"SL", "SR"}; // rear and top centres
}

} // namespace

void foldToStereo(const TapPlanes& planes, std::span<float> stereo) noexcept {
    constexpr float minus3dB = 0.70710678F;
    const auto& [left, right, surroundLeft, surroundRight] = planes;
    for (std::size_t frame = 0; frame < stereo.size() / 2; ++frame) {
        stereo[2 * frame] = left[frame] + (minus3dB * surroundLeft[frame]);
        stereo[(2 * frame) + 1] = right[frame] + (minus3dB * surroundRight[frame]);
    }
}

std::vector<Channels> tapChannelsFor(const std::vector<std::string>& channels) {
    const auto isFront = [](std::string_view c) { return c == "FL" || c == "FR"; };
    const bool hasFrontPair = std::ranges::any_of(channels, isFront);
    const auto unplaced = std::ranges::count_if(channels, hasNoPlace);
    std::vector<Channels> result;
    std::size_t seenUnplaced = 0;
    for (const std::string& channel : channels) {
        if (!hasNoPlace(channel)) {
            result.push_back(placedChannel(channel, hasFrontPair));
        } else if (unplaced == 1) {
            result.push_back({"FL", "FR"});
        } else {
            result.push_back({seenUnplaced++ % 2 == 0 ? "FL" : "FR"});
        }
    }
    return result;
}

} // namespace vantoro::pipewire

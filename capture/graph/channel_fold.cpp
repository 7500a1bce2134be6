// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/graph/channel_fold.h"

#include <algorithm>
#include <functional>
#include <iterator>

namespace vantoro::capture {

namespace {

using Channels = std::vector<std::string_view>;

bool isFront(std::string_view channel) {
    return channel == "FL" || channel == "FR";
}

bool isCentre(std::string_view channel) {
    return channel == "FC" || channel == "MONO";
}

bool isLow(std::string_view channel) {
    return channel.starts_with("LFE");
}

Channels channelsByPosition(std::string_view channel, bool hasFrontPair) {
    if (isCentre(channel)) {
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

void foldToStereo(const TapPlanes& planes, std::span<float> left, std::span<float> right) noexcept {
    const auto fold = [](std::span<const float> full, std::span<const float> quiet,
                         std::span<float> side) {
        constexpr float minus3dB = 0.70710678F;
        std::ranges::transform(full.first(side.size()), quiet.first(side.size()), side.begin(),
                               [](float f, float q) { return f + (minus3dB * q); });
    };
    const auto& [frontLeft, frontRight, surroundLeft, surroundRight] = planes;
    fold(frontLeft, surroundLeft, left);
    fold(frontRight, surroundRight, right);
}

bool hasPosition(std::string_view channel) {
    return !channel.empty() && channel != "UNK" && !channel.starts_with("AUX");
}

std::vector<bool> areMadeFromOthers(const std::vector<std::string>& channels,
                                    const std::vector<std::string>& given) {
    const bool givesOnlyFront =
        !given.empty() && std::ranges::all_of(given, [](std::string_view c) {
            return isFront(c) || isCentre(c) || isLow(c);
        });
    const bool hasFront = std::ranges::any_of(channels, isFront);
    std::vector<bool> result;
    for (const std::string& channel : channels) {
        const bool isGiven = std::ranges::find(given, channel) != given.end();
        result.push_back(givesOnlyFront && hasFront && hasPosition(channel) && !isFront(channel) &&
                         !isGiven);
    }
    return result;
}

std::vector<Channels> tapChannelsFor(const std::vector<std::string>& channels) {
    const bool hasFrontPair = std::ranges::any_of(channels, isFront);
    const auto unplaced = std::ranges::count_if(channels, std::not_fn(hasPosition));
    std::vector<Channels> result;
    std::size_t seenUnplaced = 0;
    for (const std::string& channel : channels) {
        if (hasPosition(channel)) {
            result.push_back(channelsByPosition(channel, hasFrontPair));
        } else if (unplaced == 1) {
            result.push_back({"FL", "FR"});
        } else {
            result.push_back({seenUnplaced++ % 2 == 0 ? "FL" : "FR"});
        }
    }
    return result;
}

} // namespace vantoro::capture

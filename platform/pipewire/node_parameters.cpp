// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/node_parameters.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include <spa/param/audio/raw-types.h>
#include <spa/param/audio/raw.h>
#include <spa/param/props.h>
#include <spa/pod/iter.h>

namespace vantoro::pipewire {

namespace {

/// Below one step of a 16-bit sample, as is a mixer's 1 %.
constexpr float audibleGain = 1.0F / 32768;

std::optional<bool> flag(const spa_pod* properties, std::uint32_t key) {
    const spa_pod_prop* const property = spa_pod_find_prop(properties, nullptr, key);
    bool value = false;
    if (property == nullptr || spa_pod_get_bool(&property->value, &value) < 0) {
        return std::nullopt;
    }
    return value;
}

/// Whether all gains are zero: one number, or one per channel.
std::optional<bool> areZero(const spa_pod* properties, std::uint32_t key) {
    const spa_pod_prop* const property = spa_pod_find_prop(properties, nullptr, key);
    std::array<float, SPA_AUDIO_MAX_CHANNELS> gains{};
    if (property == nullptr) {
        return std::nullopt;
    }
    std::uint32_t count = 1;
    if (spa_pod_get_float(&property->value, gains.data()) < 0) {
        count = spa_pod_copy_array(&property->value, SPA_TYPE_Float, gains.data(), gains.size());
    }
    if (count == 0) {
        return std::nullopt;
    }
    return std::ranges::all_of(std::span(gains).first(count),
                               [](float gain) { return gain < audibleGain; });
}

/// Absent if both are.
std::optional<bool> either(std::optional<bool> one, std::optional<bool> other) {
    return one || other ? std::optional(one.value_or(false) || other.value_or(false))
                        : std::nullopt;
}

std::string nameOf(std::uint32_t channel) {
    for (const spa_type_info* info = spa_type_audio_channel; info->name != nullptr; ++info) {
        if (info->type == channel) {
            const std::string_view name = info->name; // "Spa:Enum:AudioChannel:FL"
            return std::string(name.substr(name.rfind(':') + 1));
        }
    }
    return {};
}

} // namespace

/// Hardware and software ("soft") settings are reported side by side.
void readMixerSetting(capture::MixerSetting& setting, const spa_pod* properties) {
    if (properties == nullptr) {
        return;
    }
    setting.isMuted = either(flag(properties, SPA_PROP_mute), flag(properties, SPA_PROP_softMute))
                          .value_or(setting.isMuted);
    const auto ofAllChannels = areZero(properties, SPA_PROP_volume);
    const auto ofEach = either(areZero(properties, SPA_PROP_channelVolumes),
                               areZero(properties, SPA_PROP_softVolumes));
    setting.isVolumeZero = either(ofAllChannels, ofEach).value_or(setting.isVolumeZero);
}

void readChannelMap(std::vector<std::string>& channels, const spa_pod* properties) {
    const spa_pod_prop* const property =
        properties != nullptr ? spa_pod_find_prop(properties, nullptr, SPA_PROP_channelMap)
                              : nullptr;
    if (property == nullptr) {
        return;
    }
    std::array<std::uint32_t, SPA_AUDIO_MAX_CHANNELS> map{};
    const std::uint32_t count =
        spa_pod_copy_array(&property->value, SPA_TYPE_Id, map.data(), map.size());
    channels.clear();
    for (std::uint32_t i = 0; i < count; ++i) {
        channels.push_back(nameOf(map.at(i)));
    }
}

} // namespace vantoro::pipewire

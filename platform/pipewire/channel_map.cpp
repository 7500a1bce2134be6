// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/channel_map.h"

#include <array>
#include <cstdint>
#include <string_view>

#include <spa/param/audio/raw-types.h>
#include <spa/param/props.h>
#include <spa/pod/iter.h>

namespace vantoro::pipewire {

namespace {

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

// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/mixer_setting.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include <spa/param/audio/raw.h>
#include <spa/param/props.h>
#include <spa/pod/iter.h>

namespace vantoro::pipewire {

namespace {

/// Gains below the smallest step of a 16-bit sample: mixers that show 1 % are there already.
constexpr float audibleGain = 1.0F / 32768;

std::optional<bool> flag(const spa_pod* properties, std::uint32_t key) {
    const spa_pod_prop* const property = spa_pod_find_prop(properties, nullptr, key);
    bool value = false;
    if (property == nullptr || spa_pod_get_bool(&property->value, &value) < 0) {
        return std::nullopt;
    }
    return value;
}

/// Whether gains are all zero: one number, or one for each channel.
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

/// Nothing where none of the two is told.
std::optional<bool> either(std::optional<bool> one, std::optional<bool> other) {
    return one || other ? std::optional(one.value_or(false) || other.value_or(false))
                        : std::nullopt;
}

} // namespace

/// What the hardware does is told beside what is done in its place (the soft ones).
void readMixerSetting(MixerSetting& setting, const spa_pod* properties) {
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

} // namespace vantoro::pipewire

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

struct spa_pod; // NOLINT(readability-identifier-naming): the name is the library's

namespace vantoro::pipewire {

/// How a device stands in the user's mixer. Whoever records it hears nothing where it is `silent`.
struct MixerSetting {
    bool isMuted = false;
    bool isVolumeZero = false; ///< on every channel

    bool isSilent() const noexcept { return isMuted || isVolumeZero; }

    friend bool operator==(const MixerSetting&, const MixerSetting&) = default;
};

/// Takes from a node's parameters of the kind SPA_PARAM_Props what a `MixerSetting` holds; what
/// they do not name stays as it is, and parameters that are no object name nothing.
void readMixerSetting(MixerSetting& setting, const spa_pod* properties);

} // namespace vantoro::pipewire

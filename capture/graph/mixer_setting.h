// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace vantoro::capture {

/// How a device stands in the user's mixer. Whoever records it hears nothing where it is `silent`.
struct MixerSetting {
    bool isMuted = false;
    bool isVolumeZero = false; ///< on every channel

    bool isSilent() const noexcept { return isMuted || isVolumeZero; }

    friend bool operator==(const MixerSetting&, const MixerSetting&) = default;
};

} // namespace vantoro::capture

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace vantoro::capture {

/// A device's state in the user's mixer. A recording of it is silent if `isSilent`.
struct MixerSetting {
    bool isMuted = false;
    bool isVolumeZero = false; ///< on every channel

    bool isSilent() const noexcept { return isMuted || isVolumeZero; }

    friend bool operator==(const MixerSetting&, const MixerSetting&) = default;
};

} // namespace vantoro::capture

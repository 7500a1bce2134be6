// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "control/ports/audio_devices.h"

namespace vantoro::pipewire {

/// The microphones at the moment of the call. Each call asks the sound server anew, and takes 2
/// seconds at most; without a server there are none. Task threads.
class DeviceList final : public AudioDevices {
public:
    std::vector<AudioInputDevice> microphones() override;
    std::optional<std::string> defaultMicrophone() override;
    /// Whether a microphone of this identifier is there and not hidden from us.
    bool isVisible(const std::string& microphone) const;
};

} // namespace vantoro::pipewire

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "engine/recording_types.h"

namespace vantoro::pipewire {

/// The microphones at the moment of the call. Each call asks the sound server anew, and takes 2
/// seconds at most; without a server there are none. Task threads.
class DeviceList {
public:
    /// In the order in which the server lists them.
    std::vector<AudioInputDevice> microphones() const;
    /// The identifier of the one that is used when none is named.
    std::optional<std::string> defaultMicrophone() const;
    /// Whether a microphone of this identifier is there and not hidden from us.
    bool isVisible(const std::string& microphone) const;
};

} // namespace vantoro::pipewire

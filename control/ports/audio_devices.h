// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "engine/recording_types.h"

namespace vantoro {

/// The devices to record with, at one moment.
struct FoundDevices {
    bool mayCapture = false;                      ///< whether the program may capture sound at all
    std::vector<AudioInputDevice> microphones;    ///< in the system's order
    std::optional<std::string> defaultMicrophone; ///< its identifier; may be missing from the list
};

/// Finds audio devices. Task threads; returns within a time limit. Never prompts the user.
class AudioDevices {
public:
    virtual ~AudioDevices() = default;
    /// Empty if they cannot be determined.
    virtual FoundDevices find() = 0;
};

} // namespace vantoro

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "engine/recording_types.h"

namespace vantoro {

/// What there is to record with, at one moment.
struct FoundDevices {
    bool mayCapture = false;                   ///< whether sound may be captured at all
    std::vector<AudioInputDevice> microphones; ///< in the order in which the system lists them
    /// The identifier of the system's default one, where it has any; it need not be in the list.
    std::optional<std::string> defaultMicrophone;
};

/// Task threads; bounded in time. Never asks the user.
class AudioDevices {
public:
    virtual ~AudioDevices() = default;
    /// As it is at the moment of the call; nothing where that cannot be learnt.
    virtual FoundDevices find() = 0;
};

} // namespace vantoro

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "engine/recording_types.h"

namespace vantoro {

/// The machine's microphones at the moment of the call. Task threads; bounded in time.
class AudioDevices {
public:
    virtual ~AudioDevices() = default;
    /// In the order in which the system lists them; empty when they cannot be learnt.
    virtual std::vector<AudioInputDevice> microphones() = 0;
    /// The identifier of the system's default one, where it has any; it need not be in the list.
    virtual std::optional<std::string> defaultMicrophone() = 0;
};

} // namespace vantoro

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "engine/recording_types.h"

namespace vantoro {

/// One line per microphone: "* " for the default one or two spaces for the others, then identifier,
/// tab and name.
std::string devicesText(const std::vector<AudioInputDevice>& microphones,
                        const std::optional<std::string>& defaultID);

} // namespace vantoro

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "engine/recording_types.h"

namespace vantoro {

/// One line per microphone: "* " before the default one, two spaces before the others, then the
/// identifier, a tab and the name.
std::string devicesText(const std::vector<AudioInputDevice>& microphones,
                        const std::optional<std::string>& defaultID);

} // namespace vantoro

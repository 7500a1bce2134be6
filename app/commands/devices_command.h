// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "engine/recording_types.h"

namespace vantoro {

/// The microphones, a line each: "* " before the default one and two blanks before the others, then
/// identifier and name with a tab between.
std::string devicesText(const std::vector<AudioInputDevice>& microphones,
                        const std::optional<std::string>& defaultID);

} // namespace vantoro

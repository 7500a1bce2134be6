// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "engine/recording_types.h"

namespace vantoro {

/// Picks a microphone: the selected one if it is listed, else the system default (listed or not),
/// else the first listed, else none.
std::optional<std::string> chooseMicrophone(const std::optional<std::string>& selected,
                                            const std::vector<AudioInputDevice>& microphones,
                                            const std::optional<std::string>& systemDefault);

} // namespace vantoro

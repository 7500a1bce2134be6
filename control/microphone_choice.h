// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "engine/recording_types.h"

namespace vantoro {

/// The microphone to select among these: the selected one while it is there, else the system's
/// default one, be it listed or not, else the first one, else none.
std::optional<std::string> chooseMicrophone(const std::optional<std::string>& selected,
                                            const std::vector<AudioInputDevice>& microphones,
                                            const std::optional<std::string>& systemDefault);

} // namespace vantoro

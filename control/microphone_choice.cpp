// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/microphone_choice.h"

#include <algorithm>

namespace vantoro {

std::optional<std::string> chooseMicrophone(const std::optional<std::string>& selected,
                                            const std::vector<AudioInputDevice>& microphones,
                                            const std::optional<std::string>& systemDefault) {
    if (selected &&
        std::ranges::find(microphones, *selected, &AudioInputDevice::id) != microphones.end()) {
        return selected;
    }
    if (systemDefault) {
        return systemDefault;
    }
    return microphones.empty() ? std::nullopt : std::optional(microphones.front().id);
}

} // namespace vantoro

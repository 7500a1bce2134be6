// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/commands/devices_command.h"

namespace vantoro {

std::string devicesText(const std::vector<AudioInputDevice>& microphones,
                        const std::optional<std::string>& defaultID) {
    std::string text;
    for (const auto& [id, name] : microphones) {
        text.append(id == defaultID ? "* " : "  ").append(id).append("\t").append(name) += "\n";
    }
    return text;
}

} // namespace vantoro

// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/recording_folder.h"

namespace vantoro {

std::filesystem::path recordingFolder(const std::optional<std::string>& preferred,
                                      const std::filesystem::path& byDefault) {
    const std::filesystem::path folder = preferred.value_or("");
    return folder.is_absolute() ? folder : byDefault;
}

} // namespace vantoro

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "l10n/app_language.h"

namespace vantoro {

/// What the program says on standard error apart from what a recording says.
enum class CommandText : std::uint8_t {
    noMicrophone,
    resultNotPrinted,
    recordingNotPrinted,  ///< %1: the recording
    recordingsNotPrinted, ///< %1: their folder
    folderMissing,        ///< %1: the folder
    desktopMissing,
    firstProgramSilent, ///< the one that runs already
    sessionBusSilent,
    systemBusSilent,
    accessibilityBusSilent,
};

/// A sentence, UTF-8, with the arguments in place of %1, …. Any thread.
std::string commandText(CommandText text, AppLanguage language,
                        const std::vector<std::string>& arguments = {});

} // namespace vantoro

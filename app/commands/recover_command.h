// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>

#include "app/commands/command_line.h"
#include "app/ending/ending.h"
#include "engine/recorder/salvage.h"
#include "l10n/l10n.h"

namespace vantoro {

/// Finishes the recordings in a folder that were interrupted, until a signal comes; then the one in
/// work stays for the next time. Prints the final files' paths on standard output, a line each, and
/// all else on standard error, also where what could not be read of them was kept. Returns the exit
/// status: 1 where there is no such folder, or the result cannot be printed; 3 where a recording
/// could be read in part only; else 0.
int runRecoverCommand(const RecoverCommand& command, const std::filesystem::path& defaultFolder,
                      const SalvagePlatform& platform, Ending& ending, const L10n& texts);

} // namespace vantoro

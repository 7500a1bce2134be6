// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <optional>

#include "app/commands/command_line.h"
#include "app/ending/ending.h"
#include "engine/ports/recording_log.h"
#include "engine/recorder/salvage.h"
#include "l10n/l10n.h"

namespace vantoro {

/// Salvages the interrupted recordings in a folder until a signal arrives. Prints the final files'
/// paths on standard output, one per line, and everything else on standard error. Returns the exit
/// status: 1 if anything failed; 3 if a recording was only partly readable; else 0.
int runRecoverCommand(const RecoverCommand& command, const std::filesystem::path& defaultFolder,
                      const std::optional<TrackNames>& trackNames, const SalvagePlatform& platform,
                      RecordingLog& log, Ending& ending, const L10n& texts);

} // namespace vantoro

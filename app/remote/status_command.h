// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/commands/command_line.h"
#include "l10n/app_language.h"

namespace vantoro {

/// Prints what the running program does, and with `isFollowed` each change until `interruption`, a
/// descriptor, becomes readable or nobody reads standard output any more. Returns the exit status.
int runStatusCommand(const StatusCommand& command, AppLanguage language, int interruption);

} // namespace vantoro

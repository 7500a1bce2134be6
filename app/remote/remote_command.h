// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

#include "app/commands/command_line.h"
#include "l10n/app_language.h"
#include "platform/desktop/remote/control_client.h"

namespace vantoro {

/// The message for the user.
std::string errorText(desktop::NoAnswer reason, AppLanguage language);

/// Starts or stops a recording of a running program. Prints the path of a stopped one, once it is
/// saved, on standard output, and everything else on standard error. Waits until `interruption`, a
/// descriptor, becomes readable at most. Returns the exit status: 0 if the recording runs, or was
/// saved without loss.
int runRemoteCommand(const RemoteCommand& command, AppLanguage language, int interruption);

} // namespace vantoro

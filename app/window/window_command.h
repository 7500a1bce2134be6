// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/ending/stop_signals.h"

namespace vantoro {

/// Shows the window until the user quits or a signal arrives, or brings this session's window to
/// the front. `argc` and `argv` are those of `main`. Returns the exit status.
int runWindowCommand(int& argc, char** argv, StopSignals& signals);

} // namespace vantoro

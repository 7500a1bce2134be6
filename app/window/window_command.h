// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/ending/stop_signals.h"

namespace vantoro {

/// Shows the window until the user quits or a signal arrives. If the program already has a window
/// in this session, brings that to the front and returns. `argc` and `argv` are those of `main` and
/// must outlive the call. Returns the exit status.
int runWindowCommand(int& argc, char** argv, StopSignals& signals);

} // namespace vantoro

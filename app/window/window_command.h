// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/ending/stop_signals.h"

namespace vantoro {

/// Shows the window, until the user quits or a signal comes; where it is open already, brings it to
/// the front and returns. As `main`'s are the arguments, which outlive the call. Returns the exit
/// status.
int runWindowCommand(int& argc, char** argv, StopSignals& signals);

} // namespace vantoro

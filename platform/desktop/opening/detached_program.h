// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

#include "platform/desktop/opening/settings_pages.h"

namespace vantoro::desktop {

/// Starts a program that outlives this one, is not its child, and has empty standard input. False
/// if `searchPath` (colon-separated folders) lacks it, or it cannot be started. May block on the
/// disk; any thread.
bool startDetached(const CommandLine& command, const std::string& searchPath);

} // namespace vantoro::desktop

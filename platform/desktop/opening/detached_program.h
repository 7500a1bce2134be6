// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

#include "platform/desktop/opening/settings_pages.h"

namespace vantoro::desktop {

/// Starts a program that outlives us and is nobody's child of ours, with nothing to read. False
/// where `searchPath` (folders with colons between) has no such program, or it cannot be started.
/// Any thread that may wait for the disk.
bool startDetached(const CommandLine& command, const std::string& searchPath);

} // namespace vantoro::desktop

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>
#include <vector>

namespace vantoro::desktop {

/// A program's name, and its arguments.
using CommandLine = std::vector<std::string>;

/// What shows the settings about recording, the best first; not every one need be installed. None
/// for a permission that we do not know. `desktops`: the names of the desktop and of those that it
/// resembles, with colons between.
std::vector<CommandLine> privacySettingsPages(const std::string& desktops,
                                              const std::string& anchor);

} // namespace vantoro::desktop

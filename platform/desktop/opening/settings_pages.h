// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <string>
#include <vector>

namespace vantoro::desktop {

/// A program's name, then its arguments.
using CommandLine = std::vector<std::string>;

/// Programs that show the recording settings, best first; some may not be installed. Empty for an
/// unknown permission. `desktops`: the desktop's names, most specific first, colon-separated.
/// `hasEntry`: whether a desktop entry of this name is installed.
std::vector<CommandLine>
privacySettingsPages(const std::string& desktops, const std::string& anchor,
                     const std::function<bool(const char* name)>& hasEntry);

} // namespace vantoro::desktop

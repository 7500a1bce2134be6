// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <string>

#include "platform/desktop/bus/bounded_call.h"

namespace vantoro::desktop {

/// The file manager that the desktop names on its session bus, whose address this is; it is started
/// where it is not running. True when it took the request. Threads as for `boundedCall`.

/// Shows the file's folder with the file selected.
bool showFileInManager(const std::string& bus, const std::filesystem::path& file,
                       const Patience& patience);

bool showFolderInManager(const std::string& bus, const std::filesystem::path& folder,
                         const Patience& patience);

} // namespace vantoro::desktop

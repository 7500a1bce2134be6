// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <string>

#include "platform/desktop/bus/bounded_call.h"

namespace vantoro::desktop {

/// The desktop's file manager, on the session bus at the given address; it is started if necessary.
/// True if it accepted the request. Threads as for `boundedCall`.

/// Opens the file's folder with the file selected.
bool showFileInManager(const std::string& bus, const std::filesystem::path& file,
                       const Patience& patience);

bool showFolderInManager(const std::string& bus, const std::filesystem::path& folder,
                         const Patience& patience);

} // namespace vantoro::desktop

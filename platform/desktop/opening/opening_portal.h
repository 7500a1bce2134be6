// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <string>

#include "platform/desktop/bus/bounded_call.h"

namespace vantoro::desktop {

/// How a program in a sandbox has things opened outside it. True when the portal took the request:
/// which application opens it may then be the user's choice, for which nobody waits. Threads as for
/// `boundedCall`.

/// Opens a file with an application, or a folder in the file manager.
bool openByPortal(const std::string& bus, const std::filesystem::path& path,
                  const Patience& patience);

/// Shows the file's folder with the file selected.
bool revealByPortal(const std::string& bus, const std::filesystem::path& file,
                    const Patience& patience);

/// Opens an address that is not a file's.
bool openAddressByPortal(const std::string& bus, const std::string& address,
                         const Patience& patience);

} // namespace vantoro::desktop

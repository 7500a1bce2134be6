// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <string>

#include "platform/desktop/bus/bounded_call.h"

namespace vantoro::desktop {

/// Opens things outside the sandbox. True if the portal accepted the request; it may then ask the
/// user for an application, which nothing waits for. Threads as for `boundedCall`.

/// Opens a file with an application, or a folder in the file manager.
bool openByPortal(const std::string& bus, const std::filesystem::path& path,
                  const Patience& patience);

/// Opens the file's folder with the file selected.
bool revealByPortal(const std::string& bus, const std::filesystem::path& file,
                    const Patience& patience);

/// Opens a URI that is not a file's.
bool openAddressByPortal(const std::string& bus, const std::string& address,
                         const Patience& patience);

} // namespace vantoro::desktop

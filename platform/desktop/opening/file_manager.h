// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>

#include <QtDBus/QDBusConnection>

#include "platform/desktop/bus/bounded_call.h"

namespace vantoro::desktop {

/// The file manager that the desktop names on its session bus, which is started where it is not
/// running. True when it took the request. Threads as for `boundedCall`.

/// Shows the file's folder with the file selected.
bool showFileInManager(const QDBusConnection& bus, const std::filesystem::path& file,
                       const Patience& patience);

bool showFolderInManager(const QDBusConnection& bus, const std::filesystem::path& folder,
                         const Patience& patience);

} // namespace vantoro::desktop

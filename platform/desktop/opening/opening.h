// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <string>

#include "platform/desktop/bus/polled_bus.h"

namespace vantoro::desktop {

/// Opens things, with fallbacks: in a sandbox through the portal, which may ask the user for an
/// application (nothing waits for that), otherwise with the default applications and the file
/// manager, which is started if necessary. Each returns whether any attempt was accepted. Threads
/// as for `boundedCall`.
struct Opening {
    std::string sessionBus; ///< its address
    bool sandboxed = false;
    Patience patience;

    /// With its default application; reveals the file if it has none.
    bool file(const std::filesystem::path& file) const;
    /// In the file manager.
    bool folder(const std::filesystem::path& folder) const;
    /// Opens the file's folder with the file selected, or at least the folder.
    bool reveal(const std::filesystem::path& file) const;
    /// Opens a page: a file's URI or any other.
    bool address(const std::string& address) const;

private:
    bool askFileManager(const char* method, const std::filesystem::path& path) const;
    bool askPortal(const char* method, const BusArgument& what) const;
    bool askPortalAboutFile(const char* method, const std::filesystem::path& path) const;
};

} // namespace vantoro::desktop

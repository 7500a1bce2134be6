// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <string>

#include "platform/desktop/bus/bounded_call.h"

namespace vantoro::desktop {

/// Opens things, with fallbacks. Each returns whether any attempt was accepted. Threads as for
/// `boundedCall`.
class Opening {
public:
    /// `sessionBus`: its address. `sandboxed`: use only the portal.
    Opening(std::string sessionBus, bool sandboxed, Patience patience);

    /// With its default application; reveals the file if it has none.
    bool file(const std::filesystem::path& file) const;
    /// In the file manager.
    bool folder(const std::filesystem::path& folder) const;
    /// Opens the file's folder with the file selected, or at least the folder.
    bool reveal(const std::filesystem::path& file) const;
    /// Opens a page: a file's URI or any other.
    bool address(const std::string& address) const;

private:
    std::string sessionBus_;
    bool sandboxed_;
    Patience patience_;
};

} // namespace vantoro::desktop

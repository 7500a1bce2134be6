// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <string>

#include "platform/desktop/bus/bounded_call.h"

namespace vantoro::desktop {

/// The ways of having something opened, each with what is tried in its place. All return whether
/// any of it was taken. Threads as for `boundedCall`.
class Opening {
public:
    /// `sessionBus`: its address. `sandboxed`: by the portal, and by nothing else.
    Opening(std::string sessionBus, bool sandboxed, Patience patience);

    /// With its application; where it has none, the file is revealed.
    bool file(const std::filesystem::path& file) const;
    /// In the file manager.
    bool folder(const std::filesystem::path& folder) const;
    /// The file's folder with the file selected, or at least the folder.
    bool reveal(const std::filesystem::path& file) const;
    /// A page: a file's address or another.
    bool address(const std::string& address) const;

private:
    std::string sessionBus_;
    bool sandboxed_;
    Patience patience_;
};

} // namespace vantoro::desktop

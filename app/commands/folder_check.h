// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <system_error>

#include "engine/ports/file_system.h"

namespace vantoro {

/// What can be done in a folder that recordings go to.
struct FolderCheck {
    bool exists = false;                         ///< otherwise it is made when it is needed
    std::error_code refusal;                     ///< why no file can be made
    std::optional<std::uint64_t> availableBytes; ///< nothing where that cannot be told

    friend bool operator==(const FolderCheck&, const FolderCheck&) = default;
};

/// Tries to make a file in the folder, or where it would be made, and leaves nothing behind. Blocks
/// for as long as the disk does; any thread. Never throws.
FolderCheck checkFolder(FileSystem& fileSystem, const std::filesystem::path& folder);

} // namespace vantoro

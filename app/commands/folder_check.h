// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <system_error>

#include "engine/ports/file_system.h"

namespace vantoro {

/// Whether recordings can be written to a folder.
struct FolderCheck {
    bool exists = false;                         ///< if false, it is created when needed
    std::error_code refusal;                     ///< why no file can be created
    std::optional<std::uint64_t> availableBytes; ///< absent if unknown

    friend bool operator==(const FolderCheck&, const FolderCheck&) = default;
};

/// Creates and deletes a trial file in the folder, or in the parent that would hold it. Blocks as
/// long as the disk does. Any thread; never throws.
FolderCheck checkFolder(FileSystem& fileSystem, const std::filesystem::path& folder);

} // namespace vantoro

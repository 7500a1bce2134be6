// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>

#include "engine/ports/file_system.h"

namespace vantoro {

/// Renames a temporary file that holds more than its final file, so that the user sees it and
/// salvage skips it: the final file's name with the extension ".incomplete.mov", preceded by "-2",
/// "-3", … if taken. Never replaces anything. Returns the new path. Blocks; task threads only.
/// Throws what the file system throws, and then leaves the file where it was.
std::filesystem::path setAside(FileSystem& fileSystem, const std::filesystem::path& temporary,
                               const std::filesystem::path& finalFile);

} // namespace vantoro

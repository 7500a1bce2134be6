// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>

#include "engine/ports/file_system.h"

namespace vantoro {

/// Gives a temporary file, of which a final file could not take everything, a name that the user
/// sees beside that, and that salvage passes over: the final file's, with ".incomplete.mov" for its
/// extension; where something exists there, "-2", "-3", … before it. Nothing is ever replaced.
/// Returns its new place. Blocks; task threads only. Throws what the file system throws when it
/// cannot be moved, and then it is where it was.
std::filesystem::path setAside(FileSystem& fileSystem, const std::filesystem::path& temporary,
                               const std::filesystem::path& finalFile);

} // namespace vantoro

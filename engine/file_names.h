// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <string>

#include "engine/ports/clock.h"
#include "engine/ports/file_system.h"

namespace vantoro {

/// A hidden name that no earlier recording had: ".Vantoro-" + a random UUID + ".partial.mov".
std::string temporaryFileName();

/// A place in the folder for a final recording, named after the local time; on collision with
/// anything that exists there, or is being exported there, "-2", "-3", … is added.
std::filesystem::path uniqueOutputURL(const std::filesystem::path& folder, FileSystem& fileSystem,
                                      const Clock& clock);

/// Where a final file is exported to before it is complete.
std::filesystem::path stagingURL(std::filesystem::path destination);

/// Whether somebody is exporting to this place, be it in another process.
bool isBeingExportedTo(const std::filesystem::path& destination, FileSystem& fileSystem);

} // namespace vantoro

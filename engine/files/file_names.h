// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <string>

#include "engine/files/output_place.h"
#include "engine/ports/clock.h"
#include "engine/ports/file_system.h"

namespace vantoro {

/// A unique hidden name: ".Vantoro-" + a random UUID + ".partial.mov".
std::string temporaryFileName();

/// Reserves a place in the folder for a final recording, named after the current local time.
OutputPlace uniqueOutputURL(const std::filesystem::path& folder, FileSystem& fileSystem,
                            const Clock& clock);

} // namespace vantoro

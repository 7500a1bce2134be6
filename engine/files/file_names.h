// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <string>

#include "engine/files/output_place.h"
#include "engine/ports/clock.h"
#include "engine/ports/file_system.h"

namespace vantoro {

/// A hidden name that no earlier recording had: ".Vantoro-" + a random UUID + ".partial.mov".
std::string temporaryFileName();

/// A place in the folder for a final recording, named after the local time, which is read once.
OutputPlace uniqueOutputURL(const std::filesystem::path& folder, FileSystem& fileSystem,
                            const Clock& clock);

} // namespace vantoro

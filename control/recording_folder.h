// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace vantoro {

/// The folder to record into: the preferred one if it is an absolute path, else the default. A
/// relative path depends on where the program is started from, so it is ignored.
std::filesystem::path recordingFolder(const std::optional<std::string>& preferred,
                                      const std::filesystem::path& byDefault);

} // namespace vantoro

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace vantoro {

/// The folder to record into, given what the preferences hold. Only an absolute path means the same
/// wherever the program is started from: anything else in the preferences counts as nothing.
std::filesystem::path recordingFolder(const std::optional<std::string>& preferred,
                                      const std::filesystem::path& byDefault);

} // namespace vantoro

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace vantoro {

/// The preferred folder, else the default. A relative path does not count: it depends on where the
/// program is started.
std::filesystem::path recordingFolder(const std::optional<std::string>& preferred,
                                      const std::filesystem::path& byDefault);

} // namespace vantoro

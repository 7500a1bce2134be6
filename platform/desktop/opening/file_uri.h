// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace vantoro::desktop {

/// The URI of a file, whose name may be any bytes. A relative path is resolved against the current
/// folder. Any thread.
std::string fileURI(const std::filesystem::path& file);

/// The file of a URI; absent unless it is a local file's.
std::optional<std::filesystem::path> fileOfURI(const std::string& uri);

} // namespace vantoro::desktop

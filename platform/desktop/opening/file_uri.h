// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace vantoro::desktop {

/// The address of a file, whatever bytes its name is made of. A relative path is taken from the
/// current folder. Any thread.
std::string fileURI(const std::filesystem::path& file);

/// The file that an address is of: absent where it is not one of this machine's files.
std::optional<std::filesystem::path> fileOfURI(const std::string& uri);

} // namespace vantoro::desktop

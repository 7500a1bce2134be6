// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace vantoro::desktop {

/// The name by which a sandbox knows this program: absent outside a sandbox, empty where the
/// description that a sandbox provides (a key file) does not tell. Any thread.
std::optional<std::string> sandboxedApplicationID(const std::filesystem::path& description);

} // namespace vantoro::desktop

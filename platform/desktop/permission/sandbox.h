// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace vantoro::desktop {

/// The application ID that the sandbox gives this program; absent outside a sandbox, empty if the
/// sandbox's description (a key file) lacks it. Any thread.
std::optional<std::string> sandboxedApplicationID(const std::filesystem::path& description);

} // namespace vantoro::desktop

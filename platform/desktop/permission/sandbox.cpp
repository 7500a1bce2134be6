// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/permission/sandbox.h"

#include <system_error>

#include <glib.h>

namespace vantoro::desktop {

std::optional<std::string> sandboxedApplicationID(const std::filesystem::path& description) {
    std::error_code unknown;
    if (!std::filesystem::exists(description, unknown)) {
        return std::nullopt;
    }
    g_autoptr(GKeyFile) file = g_key_file_new();
    g_key_file_load_from_file(file, description.c_str(), G_KEY_FILE_NONE, nullptr);
    g_autofree char* name = g_key_file_get_string(file, "Application", "name", nullptr);
    return name != nullptr ? name : "";
}

} // namespace vantoro::desktop

// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/permission/sandbox.h"

#include <memory>
#include <system_error>

#include <glib.h>

namespace vantoro::desktop {

namespace {

struct FreeKeyFile {
    void operator()(GKeyFile* file) const { g_key_file_free(file); }
};

struct FreeString {
    void operator()(char* text) const { g_free(text); }
};

} // namespace

std::optional<std::string> sandboxedApplicationID(const std::filesystem::path& description) {
    std::error_code unknown;
    if (!std::filesystem::exists(description, unknown)) {
        return std::nullopt;
    }
    const std::unique_ptr<GKeyFile, FreeKeyFile> file(g_key_file_new());
    g_key_file_load_from_file(file.get(), description.c_str(), G_KEY_FILE_NONE, nullptr);
    const std::unique_ptr<char, FreeString> name(
        g_key_file_get_string(file.get(), "Application", "name", nullptr));
    return name ? name.get() : "";
}

} // namespace vantoro::desktop

// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/opening/file_uri.h"

#include <glib.h>

namespace vantoro::desktop {

std::string fileURI(const std::filesystem::path& file) {
    g_autofree char* absolute = g_canonicalize_filename(file.c_str(), nullptr);
    g_autofree char* uri = g_filename_to_uri(absolute, nullptr, nullptr);
    return uri != nullptr ? uri : "";
}

std::optional<std::filesystem::path> fileOfURI(const std::string& uri) {
    g_autofree char* host = nullptr;
    g_autofree char* file = g_filename_from_uri(uri.c_str(), &host, nullptr);
    const bool isLocal = file != nullptr && host == nullptr;
    return isLocal ? std::optional<std::filesystem::path>(file) : std::nullopt;
}

} // namespace vantoro::desktop

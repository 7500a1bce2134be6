// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/opening/file_uri.h"

#include <memory>

#include <glib.h>

namespace vantoro::desktop {

namespace {

struct FreeText {
    void operator()(char* text) const { g_free(text); }
};

using Text = std::unique_ptr<char, FreeText>;

} // namespace

std::string fileURI(const std::filesystem::path& file) {
    const Text absolute(g_canonicalize_filename(file.c_str(), nullptr));
    const Text uri(g_filename_to_uri(absolute.get(), nullptr, nullptr));
    return uri ? uri.get() : "";
}

std::optional<std::filesystem::path> fileOfURI(const std::string& uri) {
    char* host = nullptr;
    const Text file(g_filename_from_uri(uri.c_str(), &host, nullptr));
    const Text elsewhere(host);
    return file && !elsewhere ? std::optional<std::filesystem::path>(file.get()) : std::nullopt;
}

} // namespace vantoro::desktop

// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/opening/file_manager.h"

#include "platform/desktop/opening/file_uri.h"

namespace vantoro::desktop {

namespace {

bool show(const std::string& bus, const char* what, const std::filesystem::path& path,
          const Patience& patience) {
    constexpr const char* name = "org.freedesktop.FileManager1";
    constexpr const char* noStartupID = "";
    return boundedCall(bus,
                       {.service = name,
                        .path = "/org/freedesktop/FileManager1",
                        .interface = name,
                        .member = what},
                       {BusTexts{fileURI(path)}, noStartupID}, patience);
}

} // namespace

bool showFileInManager(const std::string& bus, const std::filesystem::path& file,
                       const Patience& patience) {
    return show(bus, "ShowItems", file, patience);
}

bool showFolderInManager(const std::string& bus, const std::filesystem::path& folder,
                         const Patience& patience) {
    return show(bus, "ShowFolders", folder, patience);
}

} // namespace vantoro::desktop

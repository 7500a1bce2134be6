// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/opening/opening.h"

#include <fcntl.h>

#include "platform/desktop/gio/default_application.h"
#include "platform/desktop/opening/file_uri.h"
#include "platform/posix/file_descriptor.h"

namespace vantoro::desktop {

bool Opening::file(const std::filesystem::path& file) const {
    const bool opened = sandboxed ? askPortalAboutFile("OpenFile", file)
                                  : openWithDefaultApplication(fileURI(file), patience);
    return opened || reveal(file);
}

bool Opening::folder(const std::filesystem::path& folder) const {
    return sandboxed ? askPortalAboutFile("OpenFile", folder)
                     : openWithDefaultApplication(fileURI(folder), patience) ||
                           askFileManager("ShowFolders", folder);
}

bool Opening::reveal(const std::filesystem::path& file) const {
    const bool revealed =
        sandboxed ? askPortalAboutFile("OpenDirectory", file) : askFileManager("ShowItems", file);
    return revealed || folder(file.parent_path());
}

bool Opening::address(const std::string& address) const {
    if (!sandboxed) {
        return openWithDefaultApplication(address, patience);
    }
    const auto file = fileOfURI(address);
    return file ? askPortalAboutFile("OpenFile", *file) : askPortal("OpenURI", address);
}

bool Opening::askFileManager(const char* method, const std::filesystem::path& path) const {
    constexpr const char* name = "org.freedesktop.FileManager1";
    constexpr const char* noStartupID = "";
    return boundedCall(sessionBus,
                       {.service = name,
                        .path = "/org/freedesktop/FileManager1",
                        .interface = name,
                        .member = method},
                       {BusTexts{fileURI(path)}, noStartupID}, patience);
}

bool Opening::askPortal(const char* method, const BusArgument& what) const {
    constexpr const char* noParentWindow = "";
    return boundedCall(sessionBus,
                       {.service = "org.freedesktop.portal.Desktop",
                        .path = "/org/freedesktop/portal/desktop",
                        .interface = "org.freedesktop.portal.OpenURI",
                        .member = method},
                       {noParentWindow, what, BusOptions()}, patience);
}

bool Opening::askPortalAboutFile(const char* method, const std::filesystem::path& path) const {
    // Read-only: the portal refuses descriptors that can write, and O_PATH ones. Non-blocking: the
    // path may name a FIFO or a device by now.
    const posix::FileDescriptor file(
        ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    return file.isOpen() && askPortal(method, BusFile{file.get()});
}

} // namespace vantoro::desktop

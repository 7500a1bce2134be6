// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/opening/opening_portal.h"

#include <fcntl.h>

#include "platform/posix/file_descriptor.h"

namespace vantoro::desktop {

namespace {

bool ask(const std::string& bus, const char* method, const BusArgument& what,
         const Patience& patience) {
    constexpr const char* noParentWindow = "";
    return boundedCall(bus,
                       {.service = "org.freedesktop.portal.Desktop",
                        .path = "/org/freedesktop/portal/desktop",
                        .interface = "org.freedesktop.portal.OpenURI",
                        .member = method},
                       {noParentWindow, what, BusOptions()}, patience);
}

bool askAboutFile(const std::string& bus, const char* method, const std::filesystem::path& path,
                  const Patience& patience) {
    // Read-only: the portal refuses descriptors that can write, and O_PATH ones. Non-blocking: the
    // path may name a FIFO or a device by now.
    const posix::FileDescriptor file(
        ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    return file.isOpen() && ask(bus, method, BusFile{file.get()}, patience);
}

} // namespace

bool openByPortal(const std::string& bus, const std::filesystem::path& path,
                  const Patience& patience) {
    return askAboutFile(bus, "OpenFile", path, patience);
}

bool revealByPortal(const std::string& bus, const std::filesystem::path& file,
                    const Patience& patience) {
    return askAboutFile(bus, "OpenDirectory", file, patience);
}

bool openAddressByPortal(const std::string& bus, const std::string& address,
                         const Patience& patience) {
    return ask(bus, "OpenURI", address, patience);
}

} // namespace vantoro::desktop

// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/opening/opening_portal.h"

#include <fcntl.h>

#include <QtCore/QString>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusUnixFileDescriptor>

namespace vantoro::desktop {

namespace {

bool ask(const QDBusConnection& bus, const char* method, const QVariant& what,
         const Patience& patience) {
    auto question = QDBusMessage::createMethodCall("org.freedesktop.portal.Desktop",
                                                   "/org/freedesktop/portal/desktop",
                                                   "org.freedesktop.portal.OpenURI", method);
    constexpr const char* noParentWindow = "";
    question << QString(noParentWindow) << what << QVariantMap();
    return succeeds(bus, question, patience);
}

bool askAboutFile(const QDBusConnection& bus, const char* method, const std::filesystem::path& path,
                  const Patience& patience) {
    // For reading: the portal refuses a descriptor that could write to what is only to be opened,
    // as one without any mode can. Not blocking: the path may be anything by now.
    const int opened = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (opened < 0) {
        return false;
    }
    QDBusUnixFileDescriptor descriptor;
    descriptor.giveFileDescriptor(opened);
    return ask(bus, method, QVariant::fromValue(descriptor), patience);
}

} // namespace

bool openByPortal(const QDBusConnection& bus, const std::filesystem::path& path,
                  const Patience& patience) {
    return askAboutFile(bus, "OpenFile", path, patience);
}

bool revealByPortal(const QDBusConnection& bus, const std::filesystem::path& file,
                    const Patience& patience) {
    return askAboutFile(bus, "OpenDirectory", file, patience);
}

bool openAddressByPortal(const QDBusConnection& bus, const std::string& address,
                         const Patience& patience) {
    return ask(bus, "OpenURI", QString::fromStdString(address), patience);
}

} // namespace vantoro::desktop

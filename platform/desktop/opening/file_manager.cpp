// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/opening/file_manager.h"

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtDBus/QDBusMessage>

#include "platform/desktop/opening/file_uri.h"

namespace vantoro::desktop {

namespace {

bool show(const QDBusConnection& bus, const char* what, const std::filesystem::path& path,
          const Patience& patience) {
    constexpr const char* name = "org.freedesktop.FileManager1";
    auto question =
        QDBusMessage::createMethodCall(name, "/org/freedesktop/FileManager1", name, what);
    constexpr const char* noStartupID = "";
    question << QStringList(QString::fromStdString(fileURI(path))) << QString(noStartupID);
    return succeeds(bus, question, patience);
}

} // namespace

bool showFileInManager(const QDBusConnection& bus, const std::filesystem::path& file,
                       const Patience& patience) {
    return show(bus, "ShowItems", file, patience);
}

bool showFolderInManager(const QDBusConnection& bus, const std::filesystem::path& folder,
                         const Patience& patience) {
    return show(bus, "ShowFolders", folder, patience);
}

} // namespace vantoro::desktop

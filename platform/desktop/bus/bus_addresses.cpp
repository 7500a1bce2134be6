// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/bus/bus_addresses.h"

#include <QtCore/QByteArray>

namespace vantoro::desktop {

BusAddresses standardBusAddresses() {
    BusAddresses buses{.system = qgetenv("DBUS_SYSTEM_BUS_ADDRESS").toStdString(),
                       .session = qgetenv("DBUS_SESSION_BUS_ADDRESS").toStdString()};
    if (buses.system.empty()) {
        buses.system = "unix:path=/run/dbus/system_bus_socket";
    }
    const auto runtimeFolder = qgetenv("XDG_RUNTIME_DIR");
    if (buses.session.empty() && !runtimeFolder.isEmpty()) {
        buses.session = "unix:path=" + runtimeFolder.toPercentEncoding("/").toStdString() + "/bus";
    }
    return buses;
}

} // namespace vantoro::desktop

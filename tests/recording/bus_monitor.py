# SPDX-License-Identifier: GPL-3.0-or-later
"""Watches what goes over the session bus."""

import threading

from gi.repository import Gio, GLib


class FirstCall:
    """Watches the session bus for a call of this method."""

    def __init__(self, method):
        address = Gio.dbus_address_get_for_bus_sync(Gio.BusType.SESSION)
        client = (Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
                  | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION)
        self._bus = Gio.DBusConnection.new_for_address_sync(address, client)
        self._was_made = threading.Event()
        self._bus.add_filter(lambda bus, message, incoming: self._take(message, method))
        rules = GLib.Variant("(asu)", ([f"type='method_call',member='{method}'"], 0))
        self._bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus.Monitoring",
                            "BecomeMonitor", rules, None, Gio.DBusCallFlags.NONE, -1)

    def _take(self, message, method):
        if message.get_message_type() != Gio.DBusMessageType.METHOD_CALL or message.get_member() != method:
            return message
        self._was_made.set()
        return None  # a monitor must not answer

    def wait(self, seconds=60):
        if not self._was_made.wait(seconds):
            raise AssertionError("the call was not made")

    def close(self):
        self._bus.close_sync()

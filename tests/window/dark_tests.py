#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The window follows the desktop's preference for dark windows, as the settings portal tells it."""

import sys

sys.dont_write_bytecode = True

from gi.repository import Gio, GLib  # noqa: E402

from window_case import WindowCase, main  # noqa: E402
from events import wait_for  # noqa: E402
from texts import ENGLISH  # noqa: E402

NO_PREFERENCE, DARK, LIGHT = range(3)
PORTAL, PATH, SETTINGS = "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop", \
    "org.freedesktop.portal.Settings"
KEY = ("org.freedesktop.appearance", "color-scheme")
INTERFACE = Gio.DBusNodeInfo.new_for_xml(f"""<node><interface name="{SETTINGS}">
  <method name="ReadOne"><arg type="s"/><arg type="s"/><arg type="v" direction="out"/></method>
  <signal name="SettingChanged"><arg type="s"/><arg type="s"/><arg type="v"/></signal>
</interface></node>""").interfaces[0]


class Portal:
    """A settings portal, served by the thread that waits for something."""

    def __init__(self, scheme):
        self._scheme = scheme
        address = Gio.dbus_address_get_for_bus_sync(Gio.BusType.SESSION)
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        self._bus = Gio.DBusConnection.new_for_address_sync(address, flags)
        self._bus.register_object(PATH, INTERFACE, self._answer)
        self._bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
                            GLib.Variant("(su)", (PORTAL, 0)), None, 0, -1)

    def set(self, scheme):
        self._scheme = scheme
        self._bus.emit_signal(None, PATH, SETTINGS, "SettingChanged",
                              GLib.Variant("(ssv)", (*KEY, GLib.Variant("u", scheme))))

    def close(self):
        self._bus.close_sync()

    def _answer(self, _bus, _sender, _path, _interface, _method, arguments, invocation):
        assert arguments.unpack() == KEY
        invocation.return_value(GLib.Variant("(v)", (GLib.Variant("u", self._scheme),)))


class Dark(WindowCase):
    def portal(self, scheme):
        portal = Portal(scheme)
        self.addCleanup(portal.close)
        return portal

    def wait_until(self, window, dark):
        """The window's left margin is dark, or light."""
        def is_so():
            return (self.screen.brightness(window.frame, 4, 300) < 0.5) == dark
        wait_for(is_so, f"the window to be {'dark' if dark else 'light'}")

    def test_windowFollowsThePreferenceInBothDirections(self):
        portal = self.portal(DARK)
        window = self.open_window()
        self.wait_until(window, dark=True)
        portal.set(LIGHT)
        self.wait_until(window, dark=False)
        portal.set(DARK)
        self.wait_until(window, dark=True)
        portal.set(NO_PREFERENCE)
        self.wait_until(window, dark=False)

    def test_windowFollowsAPortalThatComesWhileItRecords(self):
        window = self.open_window()
        self.record(window)
        self.wait_until(window, dark=False)
        self.portal(DARK)
        self.wait_until(window, dark=True)
        window.control(ENGLISH["stopRecording"]).press()
        self.saved_recording(window)


if __name__ == "__main__":
    main(Dark)

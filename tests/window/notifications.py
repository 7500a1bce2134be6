# SPDX-License-Identifier: GPL-3.0-or-later
"""The session's notification service, as the program's notifications reach it."""

from gi.repository import Gio, GLib

from events import wait_for

SERVICE = "org.freedesktop.Notifications"
PATH = "/org/freedesktop/Notifications"
INTERFACE = f"""
<node>
  <interface name="{SERVICE}">
    <method name="GetCapabilities"><arg type="as" direction="out"/></method>
    <method name="Notify">
      <arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
      <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
      <arg type="a{{sv}}" direction="in"/><arg type="i" direction="in"/><arg type="u" direction="out"/>
    </method>
    <method name="CloseNotification"><arg type="u" direction="in"/></method>
  </interface>
</node>
"""


class Notifications:
    """Runs from construction until `close`. `shown` has title and text of what stands, by number."""

    def __init__(self):
        self.shown = {}
        self._count = 0
        self._bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        interface = Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0]
        self._object = self._bus.register_object(PATH, interface, self._called, None, None)
        self._call_bus("RequestName", GLib.Variant("(su)", (SERVICE, 0)))

    def close(self):
        self._call_bus("ReleaseName", GLib.Variant("(s)", (SERVICE,)))
        self._bus.unregister_object(self._object)

    def wait_for(self, title):
        """Returns the number and the text of the notification with this title."""
        def found():
            return next(((number, shown[1]) for number, shown in self.shown.items() if shown[0] == title), None)
        return wait_for(found, f"the notification {title}, not {self.shown}")

    def choose(self, number, action):
        self._bus.emit_signal(None, PATH, SERVICE, "ActionInvoked", GLib.Variant("(us)", (number, action)))

    def _call_bus(self, method, arguments):
        self._bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method,
                            arguments, None, 0, -1)

    def _called(self, _bus, _sender, _path, _interface, method, arguments, call):
        if method == "GetCapabilities":
            call.return_value(GLib.Variant("(as)", (["actions", "body"],)))
        elif method == "CloseNotification":
            self.shown.pop(arguments.unpack()[0], None)
            call.return_value(None)
        else:
            _, replaced, _, title, text, *_ = arguments.unpack()
            self._count += 1
            number = replaced or self._count
            self.shown[number] = title, text
            call.return_value(GLib.Variant("(u)", (number,)))

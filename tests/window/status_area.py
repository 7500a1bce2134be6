# SPDX-License-Identifier: GPL-3.0-or-later
"""A panel with a status area: lists, reads and clicks the items."""

from gi.repository import Gio, GLib

from events import wait_for

WATCHER = "org.kde.StatusNotifierWatcher"
ITEM = "org.kde.StatusNotifierItem"
MENU = "com.canonical.dbusmenu"
SYSTEM_AUDIO_ITEM = "com.vantoro.app.system-audio-level"
MICROPHONE_ITEM = "com.vantoro.app.microphone-level"
PROPERTIES = "org.freedesktop.DBus.Properties"

INTERFACE = f"""
<node>
  <interface name="{WATCHER}">
    <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
    <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
  </interface>
</node>
"""


class StatusArea:
    """Runs from construction until `close`."""

    def __init__(self):
        self._names = []
        self._was_asked = False
        self._bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        interface = Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0]
        self._object = self._bus.register_object("/StatusNotifierWatcher", interface, self._called, self._asked, None)
        self._call_bus("RequestName", GLib.Variant("(su)", (WATCHER, 0)))

    def close(self):
        if self._object:
            self._call_bus("ReleaseName", GLib.Variant("(s)", (WATCHER,)))
            self._bus.unregister_object(self._object)
            self._object = None

    def item(self, identifier):
        """The item with this identifier, once it has registered and its program knows of the area."""
        def found():
            items = (Item(self._bus, name) for name in self._names)
            return self._was_asked and next((item for item in items if item.read("Id") == identifier), None)
        return wait_for(found, f"the item {identifier}")

    def _call_bus(self, method, arguments):
        self._bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method,
                            arguments, None, 0, -1)

    def _called(self, _bus, sender, _path, _interface, _method, arguments, call):
        name, = arguments.unpack()
        self._names.append(sender if name.startswith("/") else name)
        call.return_value(None)

    def _asked(self, *_):
        self._was_asked = True
        return GLib.Variant("b", True)


class Item:
    def __init__(self, bus, name):
        self._bus = bus
        self._name = name
        self.told = []  # the signals received since `listen`

    def listen(self):
        def heard(_bus, _sender, _path, _interface, signal, _arguments):
            self.told.append(signal)
        self._bus.signal_subscribe(self._name, ITEM, None, None, None, 0, heard)

    def read(self, what):
        return self._call(PROPERTIES, "Get", GLib.Variant("(ss)", (ITEM, what)))[0]

    @property
    def tool_tip(self):
        return self.read("ToolTip")[2]

    @property
    def tool_tip_detail(self):
        return self.read("ToolTip")[3]

    @property
    def menu(self):
        """The labels of its rows, with None for a line."""
        return [properties.get("label") for _, properties, _ in self._rows()]

    def choose(self, label):
        """A row of the menu."""
        number = next(number for number, properties, _ in self._rows() if properties.get("label") == label)
        self._call(MENU, "Event", GLib.Variant("(isvu)", (number, "clicked", GLib.Variant("i", 0), 0)), self.read("Menu"))

    def _rows(self):
        arguments = GLib.Variant("(iias)", (0, -1, []))
        return self._call(MENU, "GetLayout", arguments, self.read("Menu"))[1][2]

    @property
    def description(self):
        return self.read("IconAccessibleDesc")

    @property
    def picture(self):
        """Its images, each as width, height and pixels."""
        return self.read("IconPixmap")

    def click(self):
        self._call(ITEM, "Activate", GLib.Variant("(ii)", (0, 0)))

    def _call(self, interface, method, arguments, path="/StatusNotifierItem"):
        answer = self._bus.call_sync(self._name, path, interface, method, arguments, None, 0, -1)
        return answer.unpack()

# SPDX-License-Identifier: GPL-3.0-or-later
"""What a user sees of the meters in a panel."""

from gi.repository import Gio, GLib

from desktop_case import MICROPHONE, SYSTEM_AUDIO, DesktopCase, click_at
from events import wait_for

WATCHER = "org.kde.StatusNotifierWatcher"


class PanelCase(DesktopCase):
    def close(self, window):
        """Closes it to the panel."""
        wait_for(lambda: len(self.items()) == 2, "both meters in the panel")
        self.screen.ask_to_close(window.frame)
        wait_for(lambda: not self.screen.is_managed(window.frame), "the window to be hidden")

    @staticmethod
    def items():
        bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        answer = bus.call_sync(WATCHER, "/StatusNotifierWatcher", "org.freedesktop.DBus.Properties", "Get",
                               GLib.Variant("(ss)", (WATCHER, "RegisteredStatusNotifierItems")), None, 0, -1, None)
        return answer.unpack()[0]

    def assert_shows_both_meters(self, **environment):
        """They stand out from the panel and move with the sound, and a click on each brings the window back."""
        window = self.open_window(**environment)
        self.record(window)
        for source in (SYSTEM_AUDIO, MICROPHONE):
            self.close(window)
            place, at_rest, loud = self.symbol_of(source)
            self.save(at_rest, "at-rest")
            self.save(loud, source.rpartition(" ")[2])
            self.assert_seen(place, at_rest, loud, source)
            click_at(place)
            wait_for(lambda: self.screen.is_in_front(window.frame), "the window to come to the front")

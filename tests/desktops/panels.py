# SPDX-License-Identifier: GPL-3.0-or-later
"""What a user sees of the meters in a panel."""

import subprocess

from gi.repository import Gio, GLib

from desktop_case import MICROPHONE, SYSTEM_AUDIO, DesktopCase, click_at, leave
from events import wait_for

WATCHER = "org.kde.StatusNotifierWatcher"


class PanelCase(DesktopCase):
    @classmethod
    def setUpClass(cls):
        pass  # no screen reader, which some desktops wait for

    def assert_shows_both_meters(self, **environment):
        """They stand out from the panel and move with the sound, and a click on each brings the window back."""
        frame = self.screen.main_window(self.start_program(**environment).pid)
        self.wait_for_front(frame)
        self.start_recording()
        for source in (SYSTEM_AUDIO, MICROPHONE):
            self.close_to_panel(frame)
            place, at_rest, loud = self.symbol_of(source)
            self.save(at_rest, "at-rest")
            self.save(loud, source.rpartition(" ")[2])
            self.assert_seen(place, at_rest, loud, source)
            self.choose(place)
            self.wait_for_front(frame)
            leave()  # or the tool tip would show each second

    choose = staticmethod(click_at)

    def wait_for_front(self, frame):
        wait_for(lambda: self.screen.is_in_front(frame), "the window in front")

    def start_recording(self):
        with self.until_written():
            subprocess.run(["gdbus", "call", "--session", "--dest", "com.vantoro.app", "--object-path",
                            "/com/vantoro/app", "--method", "org.freedesktop.Application.ActivateAction",
                            "start-recording", "[]", "{}"], check=True, capture_output=True, timeout=60)

    def close_to_panel(self, frame):
        wait_for(lambda: len(self.items()) == 2, "both meters in the panel")
        self.screen.ask_to_close(frame)
        wait_for(lambda: not self.screen.is_managed(frame), "the window to be hidden")

    @staticmethod
    def items():
        bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        answer = bus.call_sync(WATCHER, "/StatusNotifierWatcher", "org.freedesktop.DBus.Properties", "Get",
                               GLib.Variant("(ss)", (WATCHER, "RegisteredStatusNotifierItems")), None, 0, -1, None)
        return answer.unpack()[0]

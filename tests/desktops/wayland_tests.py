#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The window and a panel on a Wayland compositor."""

import sys

sys.dont_write_bytecode = True

from panels import PanelCase, WATCHER  # noqa: E402
import picture  # noqa: E402
from desktop_case import click_at  # noqa: E402
from events import wait_for  # noqa: E402
from sway import Sway, WaylandScreen  # noqa: E402
from texts import ENGLISH  # noqa: E402
from window_case import WindowCase, main  # noqa: E402

BAR = '{ "height": 30, "modules-right": ["tray"] }'  # the height that it comes with


class Wayland(PanelCase):
    @classmethod
    def setUpClass(cls):
        WindowCase.setUpClass.__func__(cls)

    def setUp(self):
        super().setUp()
        self.sway = Sway(self)
        self.screen = WaylandScreen(self.sway)

    def start_bar(self):
        configuration = self.home / "bar.json"
        configuration.write_text(BAR)
        self.start_part("waybar", "--config", configuration, **self.sway.environment)
        self.owned(WATCHER)

    def test_waybarShowsBothMeters(self):
        self.start_bar()
        self.assert_shows_both_meters(**self.sway.environment)

    def test_closedWindowComesBackOnASecondStart(self):
        self.start_bar()
        program = self.start_program(**self.sway.environment)
        frame = self.screen.main_window(program.pid)
        self.close_to_panel(frame)
        self.assertEqual(self.start_program(**self.sway.environment).finish(), 0)
        wait_for(lambda: self.screen.is_in_front(frame), "the window to come to the front")
        self.assertFalse(program.has_ended)

    def test_windowIsOperatedOnAScreenOfFractionalScale(self):
        self.sway.scale(1.5)
        window = self.open_window(**self.sway.environment)
        self.wait_until_ready(window)
        self.save(picture.of_screen(), "shown")
        click_at(self.sway.on_screen(window.program.pid, window.control(ENGLISH["startRecording"]).place))
        wait_for(lambda: window.shows(ENGLISH["recording"]), "the window to say that it records")


if __name__ == "__main__":
    main(Wayland)

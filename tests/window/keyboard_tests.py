#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The window without a mouse."""

import sys

sys.dont_write_bytecode = True

from window_case import WindowCase, main  # noqa: E402
from events import wait_for  # noqa: E402
from screen import press_keys  # noqa: E402
from texts import ENGLISH  # noqa: E402


class Keyboard(WindowCase):
    def test_spaceStartsAndStopsTheRecordingInANewWindow(self):
        window = self.open_window()
        self.wait_until_ready(window)
        self.assertTrue(window.control(ENGLISH["startRecording"]).has_focus)
        with self.until_written():
            press_keys("space")
        wait_for(lambda: window.control(ENGLISH["stopRecording"]).has_focus, "the focus to come back")
        press_keys("space")
        self.saved_recording(window)

    def test_menuOpensByF10AndEndsTheProgramByItsLetter(self):
        window = self.open_window()
        press_keys("F10")
        wait_for(lambda: window.menu_item("Quit").is_showing, "the menu")
        press_keys("q")
        self.assertEqual(window.program.finish(), 0)

    def test_controlWClosesTheWindow(self):
        window = self.open_window()
        press_keys("ctrl+w")
        wait_for(lambda: self.screen.is_minimised(window.frame), "the window to be minimised")
        self.assertFalse(window.program.has_ended)


if __name__ == "__main__":
    main(Keyboard)

#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The window's size, under a window manager."""

import sys

sys.dont_write_bytecode = True

from window_case import WindowCase, main  # noqa: E402
from events import wait_for  # noqa: E402
from screen import press_keys  # noqa: E402


class Size(WindowCase):
    def quit(self, window):
        wait_for(lambda: self.screen.is_in_front(window.frame), "the window in front")
        press_keys("ctrl+q")
        self.assertEqual(window.program.finish(), 0)

    def test_thatTheUserGaveTheWindowComesBackAtTheNextStart(self):
        window = self.open_window()
        self.assertNotEqual(self.screen.size(window.frame), (700, 750))
        self.screen.resize(window.frame, 700, 750)
        wait_for(lambda: self.screen.size(window.frame) == (700, 750), "the window to be resized")
        self.quit(window)
        window = self.open_window()
        self.assertEqual(self.screen.size(window.frame), (700, 750))
        self.quit(window)

    def test_endsWithTheScreen(self):
        self.set_preferences(appLanguage="en", windowSize="9000x5000")
        window = self.open_window()
        width, height = self.screen.size(window.frame)
        screen_width, screen_height = self.screen.size(self.screen.root)
        self.assertLessEqual(width, screen_width)
        self.assertLess(height, screen_height)


if __name__ == "__main__":
    main(Size)

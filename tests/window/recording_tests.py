#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A whole recording through the window, with the user's controls."""

import sys

sys.dont_write_bytecode = True

from window_case import WindowCase, main  # noqa: E402
import sound  # noqa: E402
from events import wait_for  # noqa: E402
from screen import click, press_keys  # noqa: E402
from texts import ENGLISH  # noqa: E402


class WindowRecording(WindowCase):
    def both_tones(self):
        """Plays both tones for the duration of the test."""
        self.enterContext(sound.tone(440))
        self.enterContext(sound.tone(1000, "--into", sound.MICROPHONE))

    def test_mouseAloneMakesARecording(self):
        self.both_tones()
        window = self.open_window()
        self.wait_until_ready(window)
        self.wait_until_placed(window)
        with self.until_written():
            click(window.control(ENGLISH["startRecording"]))
        click(window.control(ENGLISH["stopRecording"]))
        self.assert_holds(self.saved_recording(window), 440, 1000)

    def test_keyboardAloneMakesARecording(self):
        self.both_tones()
        window = self.open_window()
        self.wait_until_ready(window)
        with self.until_written():
            self.move_focus_to(window, ENGLISH["startRecording"])
            press_keys("space")
        press_keys("ctrl+r")
        self.assert_holds(self.saved_recording(window), 440, 1000)

    def test_sourcesAreKeptApartIfThePreferencesSaySo(self):
        self.set_preferences(appLanguage="en", keepTracks="true")
        self.both_tones()
        window = self.open_window()
        self.record(window)
        window.control(ENGLISH["stopRecording"]).press()
        window.text(ENGLISH["recordingSaved"])
        microphone, computers, mixed = sorted(self.folder.iterdir())
        window.text(mixed.name)
        self.assertEqual(microphone.name, f"{mixed.stem} (microphone).m4a")
        self.assertEqual(computers.name, f"{mixed.stem} (system audio).m4a")
        for path, *frequencies in ((mixed, 440, 1000), (computers, 440), (microphone, 1000)):
            self.assert_holds(path, *frequencies)

    def move_focus_to(self, window, name):
        # Of a closed picker, Qt 6.8 says that its choice has the focus.
        controls = [thing for thing in window.things() if thing.is_a_control and not thing.is_a_choice]
        for _ in controls:
            before = self.focused(controls)
            if before and before.name == name:
                return
            press_keys("Tab")
            wait_for(lambda: self.focused(controls) not in (None, before), "the focus to move on")
        self.fail(f"the focus does not come to {name!r}")

    def focused(self, controls):
        return next((control for control in controls if control.has_focus), None)

    def wait_until_placed(self, window):
        """The window manager moves a new window; its program learns this later."""
        wait_for(lambda: window.main_window.place[:2] == self.screen.origin(window.frame), "the window to be placed")


if __name__ == "__main__":
    main(WindowRecording)

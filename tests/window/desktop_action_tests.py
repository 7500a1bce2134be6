#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The desktop starts and stops recordings over the bus, as its menu does, without the window."""

import subprocess
import sys

sys.dont_write_bytecode = True

from window_case import WindowCase, main  # noqa: E402
import sound  # noqa: E402
from events import wait_for  # noqa: E402
from texts import ENGLISH  # noqa: E402

NAME, PLACE = "com.vantoro.app", "/com/vantoro/app"


def call(action):
    return subprocess.run(
        ["gdbus", "call", "--session", "--dest", NAME, "--object-path", PLACE,
         "--method", "org.freedesktop.Application.ActivateAction", action, "[]", "{}"],
        capture_output=True, text=True, check=False, timeout=60)


class DesktopAction(WindowCase):
    def activate(self, action):
        result = call(action)
        self.assertEqual((result.returncode, result.stderr), (0, ""))

    def test_makesARecordingBehindOtherWindows(self):
        self.enterContext(sound.tone(440))
        self.enterContext(sound.tone(1000, "--into", sound.MICROPHONE))
        window = self.open_window()
        self.wait_until_ready(window)
        cover = self.screen.cover()
        with self.until_written():
            self.activate("start-recording")
        self.activate("start-recording")
        self.activate("stop-recording")
        self.assert_holds(self.saved_recording(window), 440, 1000)
        self.assertTrue(self.screen.is_in_front(cover))

    def test_thatArrivesAsSoonAsTheProgramHasItsNameIsCarriedOut(self):
        program = self.start_program()
        subprocess.run(["gdbus", "wait", "--session", "--timeout", "60", NAME], check=True, timeout=90)
        with self.until_written():
            self.activate("start-recording")
        self.activate("stop-recording")
        wait_for(lambda: [path.suffix for path in self.folder.iterdir()] == [".m4a"], "the recording to be saved")
        self.assertFalse(program.has_ended)

    def test_thatFailsBringsTheWindowBack(self):
        window = self.open_window()
        self.wait_until_ready(window)
        self.screen.ask_to_close(window.frame)
        wait_for(lambda: self.screen.is_minimised(window.frame), "the window to be minimised")
        self.folder.rmdir()
        self.folder.write_text("where the folder should be\n")
        self.activate("start-recording")
        wait_for(lambda: self.screen.is_in_front(window.frame), "the window in front")
        self.assertTrue(window.shows(ENGLISH["needsAttention"]))

    def test_thatIsUnknownIsRefused(self):
        self.open_window()
        result = call("start-dancing")
        self.assertNotEqual(result.returncode, 0)
        self.assertIn('there is no action "start-dancing"', result.stderr)


if __name__ == "__main__":
    main(DesktopAction)

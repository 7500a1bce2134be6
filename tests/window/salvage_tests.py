#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What a program leaves behind that was killed is saved by the next one, which says so."""

import sys

sys.dont_write_bytecode = True

from window_case import WindowCase, main  # noqa: E402
import recorder  # noqa: E402
import sound  # noqa: E402
from events import wait_for  # noqa: E402
from texts import ENGLISH  # noqa: E402

RECOVERED = "A previously interrupted recording was recovered and saved."


class Salvage(WindowCase):
    def test_killedRecordingIsSavedByTheNextStart(self):
        self.enterContext(sound.tone(440))
        killed = self.open_window()
        self.record(killed)
        killed.program.kill()
        self.assertEqual(len(recorder.temporary_files(self.folder)), 1)
        window = self.open_window()
        window.text(RECOVERED)
        window.control(ENGLISH["ok"]).press()
        wait_for(lambda: not window.shows(RECOVERED), "the message to be dismissed")
        self.assert_holds(self.saved_recording(window), 440)
        self.wait_until_ready(window)


if __name__ == "__main__":
    main(Salvage)

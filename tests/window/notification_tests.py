#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Notifications for a user who does not see the window."""

import os
import signal
import sys

sys.dont_write_bytecode = True

from window_case import WindowCase, main  # noqa: E402
import sound  # noqa: E402
from desktop_action_tests import call  # noqa: E402
from events import wait_for  # noqa: E402
from notifications import Notifications  # noqa: E402
from texts import ENGLISH  # noqa: E402


class Notifying(WindowCase):
    def setUp(self):
        super().setUp()
        self.notifications = Notifications()
        self.addCleanup(self.notifications.close)

    def hide(self, window):
        """Minimises it, as closing does without a status area."""
        self.screen.ask_to_close(window.frame)
        wait_for(lambda: self.screen.is_minimised(window.frame), "the window to be minimised")

    def test_recordingThatEndsWhileTheWindowIsMinimisedIsToldUntilTheWindowIsBack(self):
        self.enterContext(sound.tone(440))
        window = self.open_window()
        self.record(window)
        self.hide(window)
        os.kill(int(os.environ["VANTORO_SESSION_PIPEWIRE_PID"]), signal.SIGKILL)
        number, text = self.notifications.wait_for("The recording ended by itself")
        self.assertIn("The connection to the sound server was lost.", text)
        self.only_recording()
        self.notifications.choose(number, "default")
        wait_for(lambda: self.screen.is_in_front(window.frame), "the window to come to the front")
        wait_for(lambda: not self.notifications.shown, "the notification to be taken back")

    def test_silenceIsToldWhileTheWindowIsMinimised(self):
        window = self.open_window()
        self.record(window)
        self.hide(window)
        self.notifications.wait_for("Microphone: only silence")
        self.notifications.wait_for("System Audio: only silence")

    def test_nothingIsToldWhileTheWindowIsInFront(self):
        self.enterContext(sound.tone(440))
        window = self.open_window()
        self.record(window)
        window.control(ENGLISH["stopRecording"]).press()
        self.saved_recording(window)
        self.hide(window)
        with self.until_written():
            call("start-recording")
        call("stop-recording")
        self.notifications.wait_for(ENGLISH["recordingSaved"])
        self.assertEqual(len(self.notifications.shown), 1)  # none of the first


if __name__ == "__main__":
    main(Notifying)

#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A second start brings the existing window to the front."""

import signal
import sys

sys.dont_write_bytecode = True

from window_case import WindowCase, main  # noqa: E402
from bus_monitor import FirstCall  # noqa: E402
from events import wait_for  # noqa: E402


class SecondStart(WindowCase):
    def test_bringsTheFirstWindowToTheFrontAndEnds(self):
        window = self.open_window()
        self.screen.cover()
        self.assertEqual(self.start_program().finish(), 0)
        wait_for(lambda: self.screen.is_in_front(window.frame), "the first window in front")
        self.assertFalse(window.program.has_ended)

    def test_bringsAMinimisedWindowBack(self):
        window = self.open_window()
        self.screen.ask_to_close(window.frame)
        wait_for(lambda: self.screen.is_minimised(window.frame), "the window to be minimised")
        self.assertEqual(self.start_program().finish(), 0)
        wait_for(lambda: self.screen.is_in_front(window.frame), "the window to be back")

    def test_saysSoWhenTheFirstDoesNotAnswer(self):
        first = self.open_window().program
        first.send(signal.SIGSTOP)
        self.addCleanup(first.send, signal.SIGCONT)
        another = self.start_program()
        self.assertEqual(another.finish(), 1)
        self.assertIn("Vantoro is running already, and does not answer.\n", another.errors)

    def test_opensAWindowIfTheFirstEndsInsteadOfAnswering(self):
        first = self.open_window().program
        first.send(signal.SIGSTOP)
        call = FirstCall("Activate")
        self.addCleanup(call.close)
        another = self.start_program()
        call.wait()
        first.kill()
        self.screen.main_window(another.pid)
        self.assertFalse(another.has_ended)


if __name__ == "__main__":
    main(SecondStart)

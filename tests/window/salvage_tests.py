#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""After a kill, the next start saves the interrupted recording and says so."""

import signal
import sys

sys.dont_write_bytecode = True

from window_case import WindowCase, main  # noqa: E402
import recorder  # noqa: E402
import sound  # noqa: E402
from events import wait_for  # noqa: E402
from screen import press_keys  # noqa: E402
from texts import ENGLISH  # noqa: E402

RECOVERED = "A previously interrupted recording was recovered and saved."
STAGING = ".exporting.m4a"
LONG = 600  # seconds, which take several seconds to turn into a file


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

    def until_exporting(self, watch):
        _, name = watch.wait_for(lambda mask, name: mask & recorder.IN_CREATE and name.endswith(STAGING))
        return self.folder / name

    def watch(self):
        watch = recorder.FolderWatch(self.folder)
        self.addCleanup(watch.close)
        return watch

    def test_quittingWhileSalvageGoesOnEndsAtOnceAndLeavesItForTheNextStart(self):
        self.leave_interrupted_recording(LONG)
        before = list(self.folder.iterdir())
        watch = self.watch()
        window = self.open_window()
        self.until_exporting(watch)
        press_keys("ctrl+q")
        self.assertEqual(self.assert_ends_soon(window.program, seconds=1.5), 0)
        self.assertEqual(list(self.folder.iterdir()), before)

    def test_recordingCutsSalvageShortWhichIsTakenUpAgainBehindIt(self):
        self.leave_interrupted_recording(LONG)
        self.enterContext(sound.tone(440))
        watch = self.watch()
        window = self.open_window()
        staging = self.until_exporting(watch)
        self.record(window)
        self.assertFalse(staging.exists())
        window.control(ENGLISH["stopRecording"]).press()
        wait_for(lambda: window.shows(RECOVERED), "the salvage to be taken up again", 90)
        self.assertEqual(recorder.temporary_files(self.folder), [])
        lengths = sorted(len(sound.decoded(path)[0]) / sound.RATE for path in self.folder.iterdir())
        self.assertEqual(len(lengths), 2)
        self.assertLess(lengths[0], LONG / 2)
        self.assertGreater(lengths[1], LONG - 11)

    def quit_while_salvage_hangs(self):
        """The program, which is still running."""
        self.leave_interrupted_recording(3)
        disk = self.hang("fdatasync")
        window = self.open_window(**disk.environment)
        disk.wait_until_it_hangs()
        press_keys("ctrl+q")
        wait_for(lambda: not self.screen.is_managed(window.frame), "the window to be hidden")
        return window.program

    def test_quittingWhileSalvageHangsEndsSoon(self):
        program = self.quit_while_salvage_hangs()
        self.assert_ends_soon(program)
        self.open_window().text(RECOVERED)

    def test_terminationWhileSalvageHangsEndsSoon(self):
        self.leave_interrupted_recording(3)
        disk = self.hang("fdatasync")
        window = self.open_window(**disk.environment)
        disk.wait_until_it_hangs()
        window.program.send(signal.SIGTERM)
        self.assert_ends_soon(window.program)
        self.assertIn(f"the disk of {self.folder} probably does not answer", window.program.errors)

    def test_startBehindTheQuittingOpensAWindowThoughTheFirstHasNotEndedYet(self):
        program = self.quit_while_salvage_hangs()
        another = self.start_program()
        wait_for(lambda: self.screen.main_window(another.pid), "a window of its own")
        self.assertFalse(another.has_ended)
        self.assertEqual(program.finish(), 0)


if __name__ == "__main__":
    main(Salvage)

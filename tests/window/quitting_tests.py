#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Quitting first saves the running recording."""

import contextlib
import os
import re
import signal
import subprocess
import sys

sys.dont_write_bytecode = True

from window_case import WindowCase, main  # noqa: E402
import recorder  # noqa: E402
import sound  # noqa: E402
from events import wait_for  # noqa: E402
from screen import press_keys  # noqa: E402
from texts import ENGLISH  # noqa: E402

KEPT = re.compile(r".* A recoverable recording checkpoint was kept in the recording folder\..*")


class Quitting(WindowCase):
    def window_that_records(self):
        self.enterContext(sound.tone(440))
        window = self.open_window()
        self.record(window)
        return window

    def window_that_records_on_a_full_disk(self):
        """Its first second fits."""
        subprocess.run(["mount", "-t", "tmpfs", "-o", "size=64m", "tmpfs", str(self.folder)], check=True)
        self.addCleanup(subprocess.run, ["umount", "-l", str(self.folder)], check=True)
        window = self.window_that_records()
        with (self.folder / "filler").open("wb", buffering=0) as filler, contextlib.suppress(OSError):
            while filler.write(bytes(65536)):
                pass
        return window

    @contextlib.contextmanager
    def halted_sound_server(self):
        """Callers wait for the server as long as the test wants."""
        pid = int(os.environ["VANTORO_SESSION_PIPEWIRE_PID"])
        os.kill(pid, signal.SIGSTOP)
        try:
            yield
        finally:
            os.kill(pid, signal.SIGCONT)

    @contextlib.contextmanager
    def slow_disk(self, program):
        """Syncs take longer than the test."""
        syncs = "fsync,fdatasync,sync_file_range"
        tracer = subprocess.Popen(
            ["strace", "-f", "-p", str(program.pid), "-o", str(self.home / "trace"), "-e", f"trace={syncs}",
             "-e", f"inject={syncs}:delay_enter=60s"], stderr=subprocess.PIPE, text=True)
        try:
            self.assertIn("attached", tracer.stderr.readline())
            yield
        finally:
            tracer.terminate()
            tracer.communicate()

    def test_idleProgramEnds(self):
        window = self.open_window()
        press_keys("ctrl+q")
        self.assertEqual(window.program.finish(), 0)
        self.assertEqual(list(self.folder.iterdir()), [])

    def test_quittingWhileRecordingShowsThatItSavesThenEnds(self):
        window = self.window_that_records()
        with self.slow_disk(window.program):
            press_keys("ctrl+q")
            window.text(ENGLISH["saving"])
        self.assertEqual(window.program.finish(), 0)
        self.assert_holds(self.only_recording(), 440)

    def test_terminationWhileRecordingSaves(self):
        window = self.window_that_records()
        window.program.send(signal.SIGTERM)
        self.assertEqual(window.program.finish(), 0)
        self.assert_holds(self.only_recording(), 440)

    def test_quittingWhilePreparingSaves(self):
        self.enterContext(sound.tone(440))
        window = self.open_window()
        self.wait_until_ready(window)
        with self.halted_sound_server():
            press_keys("ctrl+r")
            window.text(ENGLISH["preparing"])
            press_keys("ctrl+q")
        self.assertEqual(window.program.finish(), 0)
        self.assertGreater(len(sound.decoded(self.only_recording())[0]), 0)

    def test_failedSavingKeepsTheWindowWithItsReasonUntilTheNextQuitting(self):
        window = self.window_that_records_on_a_full_disk()
        press_keys("ctrl+q")
        window.text(KEPT)
        window.text(ENGLISH["needsAttention"])
        self.assertFalse(window.program.has_ended)
        wait_for(lambda: self.screen.has_a_dialog_in_front(window.frame), "the message in front")
        press_keys("ctrl+q")
        self.assertEqual(window.program.finish(), 0)
        self.assert_first_second_is_kept()

    def test_terminationEndsTheProgramThoughNothingCanBeSaved(self):
        window = self.window_that_records_on_a_full_disk()
        window.program.send(signal.SIGTERM)
        self.assertEqual(window.program.finish(), 0)
        self.assert_first_second_is_kept()

    def window_that_prepares_on_a_disk_that_hangs(self):
        self.folder.rmdir()
        disk = self.hang("mkdir")
        window = self.open_window(**disk.environment)
        self.wait_until_ready(window)
        press_keys("ctrl+r")
        disk.wait_until_it_hangs()
        window.text(ENGLISH["preparing"])
        return window

    def window_that_records_on_a_disk_that_hangs(self):
        self.enterContext(sound.tone(440))
        disk = self.hang("fdatasync")
        window = self.open_window(**disk.environment)
        self.record(window)
        disk.wait_until_it_hangs()
        return window

    def assert_ends_without_a_recording(self, window):
        self.assertEqual(self.assert_ends_soon(window.program), 1)
        self.assertIn(f"the folder {self.folder}, the sound server or the desktop does not answer",
                      window.program.errors)

    def assert_ends_with_what_was_written(self, window):
        self.assertEqual(self.assert_ends_soon(window.program), 1)
        self.assertIn(f"What has reached the disk is kept in a temporary file in {self.folder}.",
                      window.program.errors)
        self.assert_first_second_is_kept()

    def test_quittingWhilePreparingHangsEndsSoon(self):
        window = self.window_that_prepares_on_a_disk_that_hangs()
        press_keys("ctrl+q")
        self.assert_ends_without_a_recording(window)

    def test_terminationWhilePreparingHangsEndsSoon(self):
        window = self.window_that_prepares_on_a_disk_that_hangs()
        window.program.send(signal.SIGTERM)
        self.assert_ends_without_a_recording(window)

    def test_quittingWhileSavingHangsEndsSoon(self):
        window = self.window_that_records_on_a_disk_that_hangs()
        press_keys("ctrl+q")
        window.text(ENGLISH["saving"])
        self.assert_ends_with_what_was_written(window)

    def test_terminationWhileSavingHangsEndsSoon(self):
        window = self.window_that_records_on_a_disk_that_hangs()
        window.program.send(signal.SIGTERM)
        self.assert_ends_with_what_was_written(window)

    def assert_first_second_is_kept(self):
        path, = recorder.temporary_files(self.folder)
        self.assertGreater(len(sound.decoded(path)[0]) / sound.RATE, 0.9)


if __name__ == "__main__":
    main(Quitting)

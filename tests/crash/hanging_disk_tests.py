#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The disk stops responding: the program still ends soon when asked to, and loses nothing."""

import os
import signal
import subprocess
import sys
import time
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "recording"))

import recorder  # noqa: E402
import sound  # noqa: E402
from case import RecordingCase, main  # noqa: E402
from hanging_disk import HangingDisk  # noqa: E402

SECONDS_TO_END = 5
SECONDS_OF_THE_IMPATIENT = 1
DYING_RECORDER = Path(recorder.PROGRAM).parent / "tests/crash/dying_recorder"

NOT_BEGUN = "The recording could not begin in time: the folder {}, the sound server or the desktop does not answer."
NOT_SAVED = "Saving makes no progress; the disk of {} probably does not answer. The recording is not finished."
NOT_AWAITED = "Vantoro ended before the recording was finished."
KEPT = "What has reached the disk is kept in a temporary file in {}."
NOT_RECOVERED = "Vantoro has stopped waiting; the disk of {} probably does not answer."


class HangingDiskCase(RecordingCase):
    def setUp(self):
        super().setUp()
        self.folder.mkdir()
        preferences = self.folder.parent / "configuration/vantoro/vantoro.conf"
        preferences.parent.mkdir(parents=True)
        preferences.write_text("[General]\nappLanguage=en\n")
        self.environment = {**os.environ, "XDG_CONFIG_HOME": str(preferences.parents[1])}

    def start(self, command, call, time=1):
        """Starts the program on a hanging disk."""
        disk = HangingDisk(self.folder, self.folder.parent, call, time)
        self.addCleanup(disk.close)
        program = subprocess.Popen([recorder.PROGRAM, command, "--folder", str(self.folder)],
                                   env={**self.environment, **disk.environment}, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.addCleanup(program.kill)
        return program, disk

    def record(self, call, time=1):
        self.enterContext(sound.tone(440))
        return self.start("record", call, time)

    def record_a_second(self, call, time=1):
        """Records one second, which is written, and on disk unless the disk hangs there."""
        watch = recorder.FolderWatch(self.folder)
        self.addCleanup(watch.close)
        started = self.record(call, time)
        watch.wait_for_fragments(1)
        return started

    def assert_ended(self, program, begin, seconds, *texts):
        """The program ends soon, without a result, and says why."""
        output, errors = program.communicate(timeout=recorder.SECONDS_TO_END)
        self.assertLess(time.monotonic() - begin, seconds)
        self.assertEqual((program.returncode, output), (1, ""), errors)
        for text in texts:
            self.assertIn(text.format(self.folder), errors)

    def assert_ends(self, program, *texts):
        self.assert_ended(program, time.monotonic(), SECONDS_TO_END, *texts)

    def assert_recovered(self):
        self.assertEqual(len(recorder.temporary_files(self.folder)), 1)
        path = recorder.run("recover", "--folder", self.folder).saved()
        left, _ = sound.decoded(path)
        self.assertGreater(len(left) / sound.RATE, 0.9)
        self.assertEqual(recorder.temporary_files(self.folder), [])

    def end_while_making_the_folder(self, number):
        self.folder.rmdir()
        program, disk = self.record("mkdir")
        disk.wait_until_it_hangs()
        program.send_signal(number)
        self.assert_ends(program, NOT_BEGUN)

    def end_while_recording(self, number):
        program, disk = self.record("fdatasync")
        disk.wait_until_it_hangs()
        program.send_signal(number)
        self.assert_ends(program, NOT_SAVED, KEPT)
        self.assert_recovered()

    def end_while_finishing(self, call, time):
        program, disk = self.record_a_second(call, time)
        program.send_signal(signal.SIGTERM)
        disk.wait_until_it_hangs()
        self.assert_ends(program, NOT_SAVED, KEPT)
        self.assert_recovered()

    def insist(self, number):
        """Sends signals until it ends."""
        program, disk = self.record("fdatasync")
        disk.wait_until_it_hangs()
        begin = time.monotonic()
        while program.returncode is None:
            program.send_signal(number)
            try:
                program.wait(0.1)
            except subprocess.TimeoutExpired:
                self.assertLess(time.monotonic() - begin, SECONDS_OF_THE_IMPATIENT)
        self.assert_ended(program, begin, SECONDS_OF_THE_IMPATIENT, NOT_AWAITED, KEPT)
        self.assert_recovered()

    def test_interruptionWhileTheFolderCannotBeMadeEndsSoon(self):
        self.end_while_making_the_folder(signal.SIGINT)

    def test_terminationWhileTheFolderCannotBeMadeEndsSoon(self):
        self.end_while_making_the_folder(signal.SIGTERM)

    def test_interruptionWhileTheFileCannotBeMadeEndsSoon(self):
        program, disk = self.record("open")
        disk.wait_until_it_hangs()
        program.send_signal(signal.SIGINT)
        self.assert_ends(program, "temporary file")

    def test_interruptionWhileTheDiskTakesNoFragmentEndsSoonAndLosesNothing(self):
        self.end_while_recording(signal.SIGINT)

    def test_terminationWhileTheDiskTakesNoFragmentEndsSoonAndLosesNothing(self):
        self.end_while_recording(signal.SIGTERM)

    def test_terminalThatIsClosedWhileTheDiskTakesNoFragmentIsNotWaitedFor(self):
        self.end_while_recording(signal.SIGHUP)

    def test_lastFragmentThatHangsIsNotWaitedFor(self):
        self.end_while_finishing("fdatasync", 2)

    def test_nameThatTheFinalFileDoesNotGetIsNotWaitedFor(self):
        self.end_while_finishing("rename", 1)

    def test_secondInterruptionEndsAtOnceAndLeavesWhatCanBeRecovered(self):
        self.insist(signal.SIGINT)

    def test_secondTerminationEndsAtOnceAndLeavesWhatCanBeRecovered(self):
        self.insist(signal.SIGTERM)

    def test_salvageThatHangsIsNotWaitedFor(self):
        subprocess.run([DYING_RECORDER, self.folder, str(3 * sound.RATE), "safe"], check=False)
        program, disk = self.start("recover", "fdatasync")
        disk.wait_until_it_hangs()
        program.send_signal(signal.SIGINT)
        self.assert_ends(program, NOT_RECOVERED)
        self.assert_recovered()


if __name__ == "__main__":
    main(HangingDiskCase)

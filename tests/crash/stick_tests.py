#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Recordings on USB sticks are saved and salvaged, and survive when the stick is pulled."""

import os
import signal
import sys
import time
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "recording"))

import faults  # noqa: E402
import recorder  # noqa: E402
import sound  # noqa: E402
from case import RecordingCase, main  # noqa: E402
from movie_boxes import whole_frames  # noqa: E402
from stick import ExFat, Ntfs, obstacle  # noqa: E402

SECONDS_TO_SYNC = 30


class Sticks(RecordingCase):
    def on_a_stick(self, kind, check):
        reason = obstacle(*kind.NEEDS)
        if reason:
            print(reason, file=sys.stderr)
            return
        self.folder.mkdir()
        self.folder = self.folder.resolve()
        stick = kind(self.folder)
        self.addCleanup(stick.close)
        with sound.tone(440):
            check(stick)

    def record_until_synced(self, stick):
        reading, writing = os.pipe()
        recording = recorder.Recording(
            stick.path, env=faults.environment_with(stick.path, writing), pass_fds=[writing])
        os.close(writing)
        self.addCleanup(os.close, reading)
        log = faults.LogReader(reading)
        self.assertTrue(log.read_until(log.has_synced, time.monotonic() + SECONDS_TO_SYNC), "nothing is synced")
        return recording

    def assert_sounds(self, path, seconds=0.9):
        left, _ = sound.decoded(path)
        self.assertGreater(len(left) / sound.RATE, seconds)
        self.assertGreater(sound.usual_amplitude(left, 440, 0.2, seconds), 0.2)

    def check_saving(self, stick):
        path = self.record_until_synced(stick).stop().saved()
        self.assert_sounds(path)
        self.assertEqual(list(stick.path.glob("*.m4a")), [path])
        self.assertEqual(recorder.temporary_files(stick.path), [])

    def check_salvage(self, stick):
        self.record_until_synced(stick).kill()
        path, = recorder.temporary_files(stick.path)
        frames = max(whole_frames(path.read_bytes()).values())
        result = recorder.run("recover", "--folder", stick.path)
        self.assertEqual(result.errors, "")
        self.assert_sounds(result.saved(), frames / sound.RATE - 0.01)
        self.assertEqual(recorder.temporary_files(stick.path), [])

    def check_simultaneous_ends(self, stick):
        watch = recorder.FolderWatch(stick.path)
        recordings = [recorder.Recording(stick.path) for _ in range(2)]
        written = set()
        while len(written) < len(recordings):
            written.add(watch.wait_for(
                lambda mask, name: mask & recorder.IN_MODIFY and name.endswith(".partial.mov"))[1])
        watch.close()
        for recording in recordings:
            os.kill(recording.pid, signal.SIGINT)
        results = [recording.finish() for recording in recordings]
        self.assertEqual([result.errors for result in results], ["", ""])
        paths = [result.saved() for result in results]
        self.assertEqual(sorted(stick.path.glob("*.m4a")), sorted(paths))
        self.assertEqual(recorder.temporary_files(stick.path), [])
        for path in paths:
            self.assert_sounds(path)

    def check_pulling(self, stick):
        """What was on the stick is there after plugging it in again, and the program did not report success."""
        recording = self.record_until_synced(stick)
        stick.pull()
        result = recording.stop()
        self.assertEqual((result.status, result.output), (1, ""))
        self.assertNotEqual(result.errors.strip(), "")
        stick.plug_in()
        self.assertEqual(list(stick.path.glob("*.m4a")), [])
        self.assert_sounds(recorder.run("recover", "--folder", stick.path).saved())

    def check_taking_away(self, stick):
        """The recording is where the program says, or on the stick after plugging it in again."""
        recording = self.record_until_synced(stick)
        stick.take_away()
        result = recording.stop()
        if result.status == 0:
            self.assert_sounds(result.saved())
        else:
            self.assertNotEqual(result.errors.strip(), "")
        stick.wait_until_gone()
        stick.plug_in()
        if result.status != 0:
            self.assert_sounds(recorder.run("recover", "--folder", stick.path).saved())

    def test_exFatKeepsARecording(self):
        self.on_a_stick(ExFat, self.check_saving)

    def test_exFatKeepsWhatAKilledRecorderLeaves(self):
        self.on_a_stick(ExFat, self.check_salvage)

    def test_exFatKeepsTwoRecordingsThatEndAtOnce(self):
        self.on_a_stick(ExFat, self.check_simultaneous_ends)

    def test_exFatStickThatIsPulledLosesNothingThatWasOnIt(self):
        self.on_a_stick(ExFat, self.check_pulling)

    def test_exFatStickThatIsTakenAwayWhileRecordingLosesNothing(self):
        self.on_a_stick(ExFat, self.check_taking_away)

    def test_ntfsKeepsARecording(self):
        self.on_a_stick(Ntfs, self.check_saving)

    def test_ntfsKeepsWhatAKilledRecorderLeaves(self):
        self.on_a_stick(Ntfs, self.check_salvage)

    def test_ntfsKeepsTwoRecordingsThatEndAtOnce(self):
        self.on_a_stick(Ntfs, self.check_simultaneous_ends)

    def test_ntfsStickThatIsPulledLosesNothingThatWasOnIt(self):
        self.on_a_stick(Ntfs, self.check_pulling)

    def test_ntfsStickThatIsTakenAwayWhileRecordingLosesNothing(self):
        self.on_a_stick(Ntfs, self.check_taking_away)


if __name__ == "__main__":
    main(Sticks)

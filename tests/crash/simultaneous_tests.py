#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Several processes of the program end recordings in one folder at the same instant, or salvage it."""

import os
import signal
import subprocess
import sys
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "recording"))

import recorder  # noqa: E402
import soak_processes  # noqa: E402
import sound  # noqa: E402
from case import RecordingCase, main  # noqa: E402
from faults import WRITTEN, Leftovers  # noqa: E402

ROUNDS = 4
RECORDERS = 4
LEFTOVERS = 12
SEED = 1  # the moments are always the same; what happens in them is not


def stop_at_once(recordings):
    """Stops them together: asks all before it waits for any."""
    for recording in recordings:
        os.kill(recording.pid, signal.SIGINT)
    return [recording.finish() for recording in recordings]


def frames_in(path):
    return round(float(sound.probe(path)["streams"][0]["duration"]) * sound.RATE)


class Simultaneous(RecordingCase):
    def start_recordings(self):
        """Returns when the first second of each is on disk."""
        self.folder.mkdir(exist_ok=True)
        watch = recorder.FolderWatch(self.folder)
        recordings = [recorder.Recording(self.folder) for _ in range(RECORDERS)]
        written = set()
        while len(written) < RECORDERS:
            _, name = watch.wait_for(lambda mask, name: mask & recorder.IN_MODIFY and name.endswith(".partial.mov"))
            written.add(name)
        watch.close()
        return recordings

    def test_recordingsThatEndAtOneInstantAreAllSaved(self):
        told = []
        with sound.tone(440):
            for _ in range(ROUNDS):
                told += stop_at_once(self.start_recordings())
        self.assertEqual([str(result) for result in told if result.status != 0 or result.errors], [])
        paths = [result.saved() for result in told]
        self.assertEqual(len(set(paths)), ROUNDS * RECORDERS, "two were told the same name")
        self.assertEqual(sorted(self.folder.iterdir()), sorted(paths))
        for path in paths:
            left, _ = sound.decoded(path)
            self.assertGreater(len(left) / sound.RATE, 0.9)

    def test_salvagesAtOneTimeShareTheirWorkAndLoseNothing(self):
        self.folder.mkdir()
        # Each has a different length, so none can stand in for another.
        lengths = [sound.RATE + 4800 * index for index in range(LEFTOVERS)]
        leftovers = Leftovers(self.folder.parent / "leftovers", {frames: WRITTEN for frames in lengths})
        leftovers.put_into(self.folder)
        salvages = [subprocess.Popen([recorder.PROGRAM, "recover", "--folder", str(self.folder)],
                                     stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True) for _ in range(2)]
        printed = []
        for salvage in salvages:
            output, errors = salvage.communicate(timeout=recorder.SECONDS_TO_END)
            self.assertEqual((salvage.returncode, errors), (0, ""))
            printed += [Path(line) for line in output.splitlines()]
        self.assertEqual(sorted(self.folder.iterdir()), sorted(printed))
        self.assertEqual(sorted(frames_in(path) for path in printed), sorted(leftovers.frames))

    def test_minuteOfRecordersSalvagesAndAKillerAccountsForEveryRecording(self):
        problems, summary = soak_processes.soak(minutes=1, seed=SEED)
        print(summary, file=sys.stderr)
        self.assertEqual(problems, [], summary)


if __name__ == "__main__":
    main(Simultaneous)

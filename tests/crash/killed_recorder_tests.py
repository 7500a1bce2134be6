#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The recorder is killed (as by kill -9) at any moment: everything in its whole fragments is salvaged."""

import random
import signal
import subprocess
import sys
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "recording"))

import recorder  # noqa: E402
import sound  # noqa: E402
from case import RecordingCase, main  # noqa: E402
from movie_boxes import ends_torn, whole_frames  # noqa: E402

DYING_RECORDER = Path(recorder.PROGRAM).parent / "tests/crash/dying_recorder"
MOST_HELD_BY_THE_CODER = 10240


class KilledRecorder(RecordingCase):
    def die(self, frames, when_safe):
        """Returns the number of frames in the whole fragments that are left."""
        self.folder.mkdir(exist_ok=True)
        before = recorder.temporary_files(self.folder)
        command = [DYING_RECORDER, self.folder, str(frames), *(["safe"] if when_safe else [])]
        self.assertEqual(subprocess.run(command, check=False).returncode, -signal.SIGKILL)
        path, = set(recorder.temporary_files(self.folder)) - set(before)
        return min(whole_frames(path.read_bytes()).values(), default=0)

    def salvage(self, frames):
        """Salvages what is left, checks every second of its sound, and cleans up."""
        result = recorder.run("recover", "--folder", self.folder)
        if frames == 0:
            self.assertEqual((result.status, result.output), (0, ""))
            path, = recorder.temporary_files(self.folder)
            path.unlink()
            return
        path = result.saved(but_for_a_part=True)
        for kept in self.folder.glob("*.incomplete.mov"):
            # It died while writing a fragment.
            self.assertTrue(ends_torn(kept.read_bytes()))
            kept.unlink()
        self.assertEqual([entry.name for entry in self.folder.iterdir()], [path.name])
        stream, = sound.probe(path)["streams"]
        self.assertEqual(round(float(stream["duration"]) * sound.RATE), frames)
        for channel in sound.decoded(path):
            for second in range(frames // sound.RATE):
                for low in (300, 2000):
                    level = sound.amplitude(channel, low + 50 * (second % 20), second + 0.3, second + 0.4)
                    self.assert_decibels(level, 0.2)
        path.unlink()

    def die_and_salvage(self, seed, shortest, longest, times=9):
        moments = random.Random(seed)
        for index in range(times):
            frames = round(moments.uniform(shortest, longest) * sound.RATE)
            when_safe = index % 2 == 0
            with self.subTest(frames=frames, when_safe=when_safe):
                whole = self.die(frames, when_safe)
                if when_safe:
                    missing = frames - whole
                    most = (1 if frames < 2 * sound.RATE else 10) * sound.RATE
                    self.assertLessEqual(missing, most + MOST_HELD_BY_THE_CODER)
                self.salvage(whole)

    def test_deathInTheFirstFragmentsLosesAtMostTheirLastSeconds(self):
        self.die_and_salvage(1, 0.2, 3)

    def test_deathWithinTwelveSecondsLosesAtMostTheLastTen(self):
        self.die_and_salvage(2, 0.9, 12)

    def test_deathWithinHalfAMinuteLosesAtMostTheLastTen(self):
        self.die_and_salvage(3, 9, 30)

    def test_deathWithinThreeQuartersOfAMinuteLosesAtMostTheLastTen(self):
        self.die_and_salvage(4, 20, 45, times=8)

    def test_recordingsThatDiedInOneFolderAreSalvagedOldestFirst(self):
        expected = []
        for seconds in (13, 3, 2):
            self.die(seconds * sound.RATE, True)
        for path in sorted(recorder.temporary_files(self.folder), key=lambda path: path.stat().st_mtime_ns):
            expected.append(min(whole_frames(path.read_bytes()).values()))
        result = recorder.run("recover", "--folder", self.folder)
        saved = [Path(line) for line in result.output.splitlines()]
        self.assertEqual([round(float(sound.probe(path)["format"]["duration"]) * sound.RATE) for path in saved],
                         expected)
        self.assertEqual(sorted(self.folder.iterdir()), sorted(saved))

    def test_nothingToSalvageIsNoFailure(self):
        self.folder.mkdir()
        (self.folder / "empty.partial.mov").touch()
        (self.folder / "other.mov").write_bytes(b"not a movie")
        (self.folder / "junk.partial.mov").write_bytes(bytes(range(256)) * 40)
        before = sorted(self.folder.iterdir())
        result = recorder.run("recover", "--folder", self.folder)
        self.assertEqual((result.status, result.output, result.errors), (0, "", ""))
        self.assertEqual(sorted(self.folder.iterdir()), before)

    def test_folderThatTurnedReadOnlyKeepsItsRecordingsUntilItIsNot(self):
        self.folder.mkdir()
        subprocess.run(["mount", "-t", "tmpfs", "tmpfs", str(self.folder)], check=True)
        self.addCleanup(subprocess.run, ["umount", "-l", str(self.folder)], check=True)
        frames = self.die(3 * sound.RATE, True)
        before = sorted(self.folder.iterdir())
        subprocess.run(["mount", "-o", "remount,ro", str(self.folder)], check=True)
        result = recorder.run("recover", "--folder", self.folder)
        self.assertEqual((result.status, result.output), (1, ""))
        self.assertIn("文件系统为只读", result.errors)
        self.assertEqual(sorted(self.folder.iterdir()), before)
        subprocess.run(["mount", "-o", "remount,rw", str(self.folder)], check=True)
        self.salvage(frames)

    def test_folderThatIsNotThereIsTold(self):
        result = recorder.run("recover", "--folder", self.folder)
        self.assertEqual((result.status, result.output), (1, ""))
        self.assertEqual(result.errors, f"文件夹 {self.folder} 不存在。\n")


if __name__ == "__main__":
    main(KilledRecorder)

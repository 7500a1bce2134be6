#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The program salvages a recording of half a minute that is damaged in the middle."""

import signal
import subprocess
import sys
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "recording"))

import recorder  # noqa: E402
import sound  # noqa: E402
from case import RecordingCase, main  # noqa: E402
from movie_boxes import boxes, whole_frames  # noqa: E402

DYING_RECORDER = Path(recorder.PROGRAM).parent / "tests/crash/dying_recorder"
SECONDS = 34
UNREADABLE_IN_PART = 3


class DamagedRecording(RecordingCase):
    """Its tones change every second; its fragments end after 1, 11, 21 and 31 seconds."""

    def setUp(self):
        super().setUp()
        self.folder.mkdir()
        command = [DYING_RECORDER, self.folder, str(SECONDS * sound.RATE), "safe"]
        self.assertEqual(subprocess.run(command, check=False).returncode, -signal.SIGKILL)
        self.path, = recorder.temporary_files(self.folder)
        self.data = bytearray(self.path.read_bytes())
        self.frames = min(whole_frames(self.data).values())
        self.assertGreater(self.frames, 31 * sound.RATE)

    def places(self, kind):
        """The positions of all boxes of a type."""
        return [content - 8 for name, content, _ in boxes(self.data) if name == kind]

    def recover(self):
        """Writes the damaged bytes into the file and salvages it; returns the final file."""
        self.path.write_bytes(self.data)
        result = recorder.run("recover", "--folder", self.folder)
        self.assertEqual(result.status, UNREADABLE_IN_PART)
        final, = map(Path, result.output.splitlines())
        kept = final.with_suffix(".incomplete.mov")
        self.assertIn(str(kept), result.errors)
        self.assertEqual(sorted(self.folder.iterdir()), sorted([final, kept]))
        self.assertEqual(kept.read_bytes(), bytes(self.data))
        self.assert_isNotSalvagedAgain()
        return final

    def assert_isNotSalvagedAgain(self):
        before = sorted(self.folder.iterdir())
        result = recorder.run("recover", "--folder", self.folder)
        self.assertEqual((result.status, result.output, result.errors), (0, "", ""))
        self.assertEqual(sorted(self.folder.iterdir()), before)

    def assert_sounds(self, final, gap):
        """Every second has its tones, except for the gap, which is silent."""
        stream, = sound.probe(final)["streams"]
        self.assertEqual(round(float(stream["duration"]) * sound.RATE), self.frames)
        for channel in sound.decoded(final):
            for second in range(self.frames // sound.RATE):
                for low in (300, 2000):
                    level = sound.amplitude(channel, low + 50 * (second % 20), second + 0.3, second + 0.4)
                    if second in gap:
                        self.assertLess(level, 1e-4)
                    else:
                        self.assert_decibels(level, 0.2)
            if gap:
                self.assertLess(sound.peak(channel, gap[0] + 0.1, gap[-1] + 0.9), 1e-4)

    def test_flippedBitInAFragmentsHeaderCostsThatFragmentAlone(self):
        self.data[self.places("moof")[1] + 1] ^= 0x10
        self.assert_sounds(self.recover(), range(1, 11))

    def test_everyFlippedBitOfTheFirstBytesIsGotOver(self):
        place = self.places("moof")[1]
        whole = bytes(self.data)
        for index in range(8):
            with self.subTest(byte=index):
                self.data[:] = whole
                self.data[place + index] ^= 1 << index
                final = self.recover()
                self.assertEqual(round(float(sound.probe(final)["format"]["duration"]) * sound.RATE), self.frames)
                for path in self.folder.iterdir():
                    path.unlink()

    def test_damagedFirstFragmentIsSilentAndTheOthersAreInTheirPlaces(self):
        self.data[self.places("moof")[0] + 5] = 0
        self.assert_sounds(self.recover(), range(0, 1))

    def test_zeroedBlockOnTheBorderOfTwoFragmentsCostsThoseTwo(self):
        place = self.places("moof")[2]
        self.data[place - 2048:place + 2048] = bytes(4096)
        final = self.recover()
        stream, = sound.probe(final)["streams"]
        self.assertEqual(round(float(stream["duration"]) * sound.RATE), self.frames)
        channel = sound.decoded(final)[0]
        for second in (*range(0, 1), *range(21, 31)):
            self.assert_decibels(sound.amplitude(channel, 300 + 50 * (second % 20), second + 0.3, second + 0.4), 0.2)

    def test_tornFragmentAtTheEndIsKept(self):
        del self.data[self.places("mdat")[3] + 10_000:]
        self.frames = min(whole_frames(self.data).values())
        self.assert_sounds(self.recover(), range(0))

    def test_earlierOriginalIsNotReplaced(self):
        self.data[self.places("moof")[1] + 1] ^= 0x10
        self.path.write_bytes(self.data)
        other = self.path.with_name(".other.partial.mov")
        other.write_bytes(self.data)
        result = recorder.run("recover", "--folder", self.folder)
        self.assertEqual(result.status, UNREADABLE_IN_PART)
        self.assertEqual(len(result.output.splitlines()), 2)
        self.assertEqual(len(result.errors.splitlines()), 2)
        kept = sorted(self.folder.glob("*.incomplete.mov"))
        self.assertEqual([path.read_bytes() for path in kept], 2 * [bytes(self.data)])


if __name__ == "__main__":
    main(DamagedRecording)

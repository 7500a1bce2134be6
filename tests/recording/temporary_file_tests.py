#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The hidden file that a running recording writes."""

import os
import signal
import struct
import subprocess
import sys

sys.dont_write_bytecode = True

import recorder  # noqa: E402
import sound  # noqa: E402
from case import RecordingCase, main  # noqa: E402

UUID = "[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}"


def boxes(data):
    """The top-level boxes of a movie: type, offset and size."""
    offset = 0
    while offset + 8 <= len(data):
        size, kind = struct.unpack_from(">I4s", data, offset)
        yield kind.decode("latin-1"), offset, size
        offset += size


class TemporaryFile(RecordingCase):
    def test_isHiddenAndHoldsTwoAacTracksInOrder(self):
        with sound.tone(440), sound.tone(300, "--into", sound.MICROPHONE):
            recording = recorder.Recording(self.folder)
            recording.wait_until_written()
            path, = recorder.temporary_files(self.folder)
            self.assertRegex(path.name, rf"^\.Vantoro-{UUID}\.partial\.mov$")
            self.assertEqual(path.stat().st_mode & 0o777, 0o600)
            description = sound.probe(path)
            self.assertEqual(description["format"]["tags"]["major_brand"], "qt  ")
            self.assertEqual([(stream["codec_name"], stream["profile"], stream["sample_rate"], stream["channels"])
                              for stream in description["streams"]],
                             [("aac", "LC", "48000", 2), ("aac", "LC", "48000", 1)])
            system, microphone = sound.decoded(path, 0)[0], sound.decoded(path, 1)[0]
            self.assertGreater(sound.usual_amplitude(system, 440, 0.1, 0.9), 0.2)
            self.assertGreater(sound.usual_amplitude(microphone, 300, 0.1, 0.9), 0.2)
            recording.stop().saved()
        self.assertEqual(recorder.temporary_files(self.folder), [])

    def test_growsByAFragmentAfterOneSecondAndThenEveryTen(self):
        recording = recorder.Recording(self.folder)
        recording.watch.wait_for_fragments(3)
        path, = recorder.temporary_files(self.folder)
        data = path.read_bytes()
        self.assertEqual([kind for kind, _, _ in boxes(data)], ["ftyp", "moov"] + 3 * ["moof", "mdat", "uuid"])
        ends = []
        for kind, offset, size in boxes(data):
            if kind == "mdat":
                ends.append(self.seconds_of(data[:offset + size]))
        for end, expected in zip(ends, (1, 11, 21)):
            self.assertAlmostEqual(end, expected, delta=0.05)
        recording.stop().saved()

    def seconds_of(self, data):
        part = self.folder / "part.mov"
        part.write_bytes(data)
        duration = min(float(stream["duration"]) for stream in sound.probe(part)["streams"])
        part.unlink()
        return duration

    def test_isReadableWithAllFragmentsAfterTheProcessWasKilled(self):
        with sound.tone(440):
            recording = recorder.Recording(self.folder)
            recording.watch.wait_for_fragments(2)
            result = recording.kill()
        self.assertEqual(result.status, -signal.SIGKILL)
        path, = recorder.temporary_files(self.folder)
        left, _ = sound.decoded(path)
        self.assertGreater(len(left) / sound.RATE, 10.9)
        self.assertGreater(sound.usual_amplitude(left, 440, 5, 10), 0.2)

    def test_everyWriteIsFollowedByASync(self):
        trace = self.folder.parent / "trace"
        # The leak check of a sanitized program also traces it, and a process has one tracer at most.
        options = os.environ.get("ASAN_OPTIONS", "") + ":detect_leaks=0"
        recording = recorder.Recording(
            self.folder, "--no-microphone", "--seconds", 3, env={**os.environ, "ASAN_OPTIONS": options},
            prefix=["strace", "-f", "-y", "-o", str(trace), "-e",
                    "trace=write,pwrite64,fdatasync,fsync,linkat,rename,renameat,renameat2,unlink,unlinkat"])
        recording.finish().saved()
        calls = []
        for line in trace.read_text(errors="replace").splitlines():
            if str(self.folder) not in line or "resumed" in line:
                continue
            name = line.split("(")[0].split()[-1]
            # The mix made ahead has no name yet; the system calls such a file deleted.
            is_final = ".exporting." in line or "(deleted)" in line
            kind = "temporary" if ".partial.mov" in line else "final" if is_final else "folder"
            calls.append((name, kind))
        temporary = [name for name, kind in calls if kind == "temporary"]
        self.assertIn("pwrite64", temporary[0])
        for index, name in enumerate(temporary[:-1]):
            if name == "pwrite64":
                self.assertIn(temporary[index + 1], ("fdatasync", "pwrite64"))
        order = [call for call in calls if call[0] != "pwrite64"]
        moved = next(index for index, (name, _) in enumerate(order) if name in ("linkat", "renameat2"))
        synced = max(index for index, call in enumerate(order) if call == ("fdatasync", "final"))
        self.assertLess(synced, moved, "complete on the disk before it has its name")
        self.assertNotIn(("pwrite64", "final"), calls[calls.index(order[moved]):])
        removed = next(index for index, (name, kind) in enumerate(order)
                       if name.startswith("unlink") and kind == "temporary")
        self.assertIn(("fsync", "folder"), order[moved:removed], "the new name is on the disk first")


if __name__ == "__main__":
    main(TemporaryFile)

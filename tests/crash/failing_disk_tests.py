#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The program records real sound onto a disk on which one call fails: the hardest faults of the table."""

import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "recording"))

import faults  # noqa: E402
import recorder  # noqa: E402
import sound  # noqa: E402
from case import RecordingCase, main  # noqa: E402
from faults import Fault, Folder  # noqa: E402

# One track at full volume is copied at the stop, not mixed ahead, so the calls are always the same.
OPTIONS = ("--no-system-audio", "--seconds", "3")
FAULTS = (Fault("fdatasync temporary 1", "EIO"), Fault("pwrite temporary 2", "EIO"),
          Fault("fdatasync temporary 2", "hang"), Fault("pwrite staging 1", "ENOSPC"),
          Fault("fdatasync staging 1", "hang"), Fault("unlink temporary 1", "die"))


class FailingDisk(RecordingCase):
    def problems(self, fault):
        folder = Folder(self.folder.resolve() / fault.call.replace(" ", "-"))
        outcome = faults.run([recorder.PROGRAM, *recorder.IN_ENGLISH, *OPTIONS, "--folder", folder.path],
                             folder.path, fault)
        problems = list(outcome.problems)
        if not faults.is_met(outcome, fault):
            problems.append("it was not met")
        printed = [Path(line) for line in outcome.output.splitlines()]
        if outcome.status == 0 and (len(printed) != 1 or printed[0] not in folder.finals()):
            problems.append(f"it succeeds, and prints {printed}")
        if outcome.status != 0 and fault.how != "die" and (outcome.status != 1 or not outcome.errors.strip()):
            problems.append("it fails without a word")
        problems += folder.foreigners.problems() + folder.recover()
        if not any(self.holds_the_tone(path) for path in folder.finals()):
            problems.append("no final file holds what was played")
        return [f"{fault.how} at {fault.call}: {problem} ({outcome[:3]})" for problem in problems]

    @staticmethod
    def holds_the_tone(path):
        left, *_ = sound.decoded(path)
        return len(left) >= 0.9 * sound.RATE and sound.usual_amplitude(left, 440, 0.2, 0.9) > 0.2

    def test_realRecordingsOnADiskThatFailsAreKept(self):
        with sound.tone(440, "--into", sound.MICROPHONE), ThreadPoolExecutor(len(FAULTS)) as pool:
            problems = [problem for found in pool.map(self.problems, FAULTS) for problem in found]
        self.assertEqual(problems, [], "\n" + "\n".join(problems))


if __name__ == "__main__":
    main(FailingDisk)

#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A session repeats its command only if it failed while the host withheld processor time."""

import contextlib
import io
import os
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools/session.d"))

from stolen import is_disturbance, undisturbed  # noqa: E402


class Machine:
    """Its commands end with one status after another, and the host takes some seconds before each end."""

    def __init__(self, folder, *runs):
        self.times = folder / "stat"
        self._runs = iter(runs)
        self._stolen = 1000
        self._write()

    def run(self):
        status, seconds = next(self._runs)
        self._stolen += int(seconds * os.sysconf("SC_CLK_TCK"))
        self._write()
        return status

    def _write(self):
        self.times.write_text(f"cpu  774 0 772 14994 386 0 15 {self._stolen} 0 0\ncpu0 1 1 1 1 1 1 1 1 1 1\n")


class UndisturbedTests(unittest.TestCase):
    def status_of(self, *runs):
        """The result of all the given runs, each used exactly once."""
        with tempfile.TemporaryDirectory() as folder:
            machine = Machine(Path(folder), *runs)
            with contextlib.redirect_stderr(io.StringIO()) as said:
                status = undisturbed(machine.run, machine.times)
            self.assertEqual(said.getvalue().count("once more"), len(runs) - 1)
            with self.assertRaises(StopIteration):
                machine.run()
        return status

    def test_whatSucceedsRunsOnce(self):
        self.assertEqual(self.status_of((0, 5)), 0)

    def test_whatFailsOnAQuietMachineHasFailed(self):
        self.assertEqual(self.status_of((1, 0.1)), 1)

    def test_whatFailsOnADisturbedMachineRunsAgain(self):
        self.assertEqual(self.status_of((1, 5), (0, 0)), 0)
        self.assertEqual(self.status_of((1, 5), (1, 0)), 1)

    def test_triesAreCounted(self):
        self.assertEqual(self.status_of((1, 5), (1, 5), (1, 5)), 1)

    def test_crashesAndFindingsOfSanitizersCountAtOnce(self):
        for status in (66, 99, 134, 139):
            self.assertEqual(self.status_of((status, 5)), status)

    def test_longRunsMeetMoreOfWhatIsUsual(self):
        self.assertFalse(is_disturbance(0.1, seconds=1, processors=2))
        self.assertTrue(is_disturbance(0.3, seconds=1, processors=2))
        self.assertFalse(is_disturbance(0.3, seconds=60, processors=2))
        self.assertTrue(is_disturbance(1.5, seconds=60, processors=2))


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *(f"UndisturbedTests.test_{name}" for name in sys.argv[1:])])

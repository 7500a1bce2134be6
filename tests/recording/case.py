# SPDX-License-Identifier: GPL-3.0-or-later
"""The base of the test cases: a private folder for each, and running them one by one."""

import sys
import tempfile
import unittest
from pathlib import Path


class RecordingCase(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory(prefix="vantoro-recording-")
        self.addCleanup(temporary.cleanup)
        self.folder = Path(temporary.name) / "recordings"

    def assert_decibels(self, measured, expected, tolerance=0.5):
        from sound import decibels
        self.assertAlmostEqual(decibels(measured), decibels(expected), delta=tolerance)


def main(case_class):
    """With a name, runs only that case; otherwise all."""
    names = [f"{case_class.__name__}.test_{name}" for name in sys.argv[1:]]
    unittest.main(argv=[sys.argv[0], *names], module="__main__")

#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The manual pages are well formed and describe the options."""

import os
import re
import subprocess
import sys
import unittest
from pathlib import Path

BUILD = Path(os.environ.get("VANTORO_PROGRAM", Path(__file__).resolve().parents[2] / "build/release/vantoro")).parent
PAGES = {BUILD / "packaging/man/vantoro.1": "Stop after N seconds.",
         BUILD / "packaging/man/zh_CN/vantoro.1": "录制 N 秒后停止。"}


class ManualTests(unittest.TestCase):
    def test_everyPageIsWellFormed(self):
        for page in PAGES:
            with self.subTest(page=page):
                result = subprocess.run(["mandoc", "-T", "lint", "-W", "warning", page], capture_output=True, text=True,
                                        timeout=60, check=False)
                self.assertEqual((result.returncode, result.stdout), (0, ""))

    def test_everyPageDescribesOptionsInItsLanguage(self):
        for page, text in PAGES.items():
            with self.subTest(page=page):
                shown = subprocess.run(["mandoc", "-T", "utf8", page], capture_output=True, text=True, timeout=60,
                                       check=True).stdout
                self.assertRegex(re.sub(".\b", "", shown), rf"(?m)^ +--seconds N\n +{text}")


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *(f"ManualTests.test_{name}" for name in sys.argv[1:])])

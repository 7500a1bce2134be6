#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The manual pages are well formed, and cover everything in the program's help."""

import re
import subprocess
import sys
import unittest
from pathlib import Path

sys.dont_write_bytecode = True

import printed_help  # noqa: E402

MANUAL = Path(__file__).resolve().parents[2] / "packaging/man"
PAGES = [MANUAL / "vantoro.1", MANUAL / "zh_CN/vantoro.1"]


def run(*command):
    return subprocess.run(command, capture_output=True, text=True, timeout=60, check=False)


class ManualTests(unittest.TestCase):
    def test_everyPageIsWellFormed(self):
        for page in PAGES:
            with self.subTest(page=page):
                result = run("mandoc", "-T", "lint", "-W", "warning", str(page))
                self.assertEqual((result.returncode, result.stdout), (0, ""))

    def test_everyPageSpeaksOfEveryCommandAndOption(self):
        for page in PAGES:
            shown = re.sub(".\b", "", run("mandoc", "-T", "utf8", str(page)).stdout)
            words = set(re.findall(r"(?<![\w-])-{0,2}[a-z][a-z-]*", shown))
            for command, names in printed_help.read().items():
                with self.subTest(page=page, command=command):
                    self.assertLessEqual({command} - {""} | names, words)

    def test_pagesOfAllLanguagesSpeakOfTheSame(self):
        def names(page):
            return re.findall(r"^\.B[IR]? (.*)$", page.read_text(encoding="utf-8"), re.MULTILINE)

        def kept(page):
            return [re.match(r'[\\\w.-]+', name).group() for name in names(page)]

        self.assertEqual(*map(kept, PAGES))


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *(f"ManualTests.test_{name}" for name in sys.argv[1:])])

#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The shells complete the program's commands and options."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True

import shells  # noqa: E402


class CompletionTests(unittest.TestCase):
    def start(self, name):
        temporary = tempfile.TemporaryDirectory(prefix="vantoro-shell-")
        self.addCleanup(temporary.cleanup)
        self.folder = Path(temporary.name)
        shell = shells.started(name, self.folder)
        self.addCleanup(shell.close)
        return shell

    def look_at(self, name):
        """Checks what all shells have in common."""
        shell = self.start(name)
        (self.folder / "recordings").mkdir()
        (self.folder / "record.txt").touch()
        for typed, offered in (
            ("vantoro re", ["record", "recover"]),
            ("vantoro dev", ["devices"]),
            ("vantoro st", ["start", "status", "stop"]),
            ("vantoro status --", ["--follow", "--json", "--language"]),
            ("vantoro --", ["--help", "--version"]),
            ("vantoro recover --", ["--folder", "--language", "--tracks"]),
            ("vantoro devices --", ["--json", "--language"]),
            ("vantoro record --no", ["--no-microphone", "--no-system-audio"]),
            ("vantoro record --microphone ", ["front", "rear:0"]),
            ("vantoro record --no-system-audio --microphone rear:", ["rear:0"]),
            ("vantoro record --seconds ", []),
            ("vantoro record --language ", ["en", "zh-Hans"]),
            ("vantoro doctor --language z", ["zh-Hans"]),
        ):
            with self.subTest(typed=typed):
                self.assertEqual(shell.offered(typed), offered)
        place = f"{self.folder}/recordings"
        offered, = shell.offered(f"vantoro recover --folder {self.folder}/rec")
        self.assertEqual(offered.rstrip("/"), place)

    def test_bashCompletionIsCleanShellCode(self):
        subprocess.run(["shellcheck", str(shells.COMPLETIONS / "bash/vantoro")], timeout=60, check=True)

    def test_bashOffersWhatTheProgramTakes(self):
        self.look_at("bash")

    def test_zshOffersWhatTheProgramTakes(self):
        self.look_at("zsh")

    def test_fishOffersWhatTheProgramTakes(self):
        self.look_at("fish")

    def test_bashCompletesWhatIsWrittenWithAnEqualsSign(self):
        shell = self.start("bash")
        self.assertEqual(shell.offered("vantoro record --language="), ["--language=en", "zh-Hans"])


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *(f"CompletionTests.test_{name}" for name in sys.argv[1:])])

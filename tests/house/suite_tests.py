#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What ./test counts and prints, in a tree whose tests end as the case wants."""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
# Each run of the tests takes the next results.
CTEST = """#!/bin/bash
echo "ctest $*" >>"$calls"
mkdir -p build/release
cp "$results/$(grep --count ^ctest "$calls").xml" build/release/tests.xml
! grep -q 'status="fail"' build/release/tests.xml
"""


class SuiteTests(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        shutil.copy(ROOT / "test", self.folder)
        for name in ("tools/install-dependencies", "tools/checks", "bin/cmake"):
            self.add_program(name, "#!/bin/sh\n")
        self.add_program("bin/ctest", CTEST)
        (self.folder / "tools/count-tests").symlink_to(ROOT / "tools/count-tests")
        self.calls = self.folder / "calls"
        self.environment = {"PATH": f"{self.folder}/bin:{os.environ['PATH']}", "calls": str(self.calls),
                            "results": str(self.folder)}

    def add_program(self, name, text):
        path = self.folder / name
        path.parent.mkdir(exist_ok=True)
        path.write_text(text, encoding="utf-8")
        path.chmod(0o755)

    def run_it(self, *runs):
        """With the results of these runs, each a dictionary from a test's name to whether it passes."""
        for number, results in enumerate(runs, 1):
            cases = "".join(f'<testcase name="{name}" status="{"run" if passes else "fail"}"/>'
                            for name, passes in results.items())
            (self.folder / f"{number}.xml").write_text(f"<testsuite>{cases}</testsuite>", encoding="utf-8")
        result = subprocess.run([self.folder / "test", "--quick", *self.arguments], env=self.environment,
                                stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=60, check=False)
        return result.returncode, result.stdout.splitlines()

    arguments = ["--again"]

    def runs(self):
        return [line for line in self.calls.read_text(encoding="utf-8").splitlines() if line.startswith("ctest")]

    def test_allThatPassAreCountedOnce(self):
        status, lines = self.run_it({"Window.opens": True, "Mixer.mixes": True})
        self.assertEqual((status, lines[-1]), (0, "2 passed, 0 failed"))
        self.assertEqual(len(self.runs()), 1)

    def test_testOfASessionThatPassesAloneIsCountedAsPassedAndNamed(self):
        status, lines = self.run_it({"Window.opens": False, "Mixer.mixes": True}, {"Window.opens": True})
        self.assertEqual((status, lines[-1]), (0, "2 passed, 0 failed"))
        self.assertIn("Window.opens failed beside others, and was run again alone", lines)
        self.assertIn("--rerun-failed --parallel 1", self.runs()[1])

    def test_testOfASessionThatFailsAloneTooHasFailed(self):
        status, lines = self.run_it({"Window.opens": False, "Mixer.mixes": True}, {"Window.opens": False})
        self.assertEqual((status, lines[-1]), (1, "1 passed, 1 failed"))
        self.assertIn("Window.opens failed:", lines)

    def test_otherTestsGetNoSecondRun(self):
        status, lines = self.run_it({"Window.opens": False, "Mixer.mixes": False})
        self.assertEqual((status, lines[-1]), (1, "0 passed, 2 failed"))
        self.assertEqual(len(self.runs()), 1)

    def test_withoutTheOptionThereIsNoSecondRun(self):
        self.arguments = []
        status, lines = self.run_it({"Window.opens": False, "Mixer.mixes": True})
        self.assertEqual((status, lines[-1]), (1, "1 passed, 1 failed"))
        self.assertEqual(len(self.runs()), 1)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *(f"SuiteTests.test_{name}" for name in sys.argv[1:])])

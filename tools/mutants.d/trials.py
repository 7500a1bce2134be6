# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs the tests of a GoogleTest program that contains all mutants, for one mutant after another."""

import dataclasses
import os
import resource
import shutil
import signal
import subprocess
import tempfile
import time
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

MOST_MUTANTS = 65536  # as in chosen_mutant.cpp
MOST_MEMORY = 8 << 30
LARGEST_FILE = 4 << 30
ROUNDS = (0.5, 2.0, 8.0)  # seconds: tests that together take less run first


@dataclasses.dataclass
class Test:
    name: str
    seconds: float
    reached: frozenset


class Trials:
    def __init__(self, program, seconds, jobs):
        self._program = program
        self._seconds = seconds
        self._jobs = jobs
        self._tests = []

    def look_at_tests(self):
        """Runs each test alone, without a mutant, and notes which mutants it reaches."""
        with ThreadPoolExecutor(self._jobs) as pool:
            self._tests = list(pool.map(self._look_at, self._names()))
        self._tests.sort(key=lambda test: test.seconds)

    def found(self, mutants):
        """For each mutant, whether a test detects it; None if no test reaches it."""
        with ThreadPoolExecutor(self._jobs) as pool:
            yield from pool.map(self._find, mutants)

    def _names(self):
        listed = subprocess.run([self._program, "--gtest_list_tests"], capture_output=True, text=True, timeout=60,
                                check=True).stdout
        names = []
        for line in listed.splitlines():
            if line.startswith("  "):
                names.append(suite + line.split("#")[0].strip())
            elif line.split("#")[0].strip().endswith("."):
                suite = line.split("#")[0].strip()
        if not names:
            raise SystemExit(f"mutants: {self._program} has no tests")
        return names

    def _look_at(self, name):
        with tempfile.NamedTemporaryFile() as reached:
            reached.truncate(MOST_MUTANTS)
            begin = time.monotonic()
            if not self._passes([name], 120, {"VANTORO_MUTANTS_REACHED": reached.name}):
                raise SystemExit(f"mutants: {name} fails without a mutant")
            taken = time.monotonic() - begin
            numbers = frozenset(number for number, byte in enumerate(Path(reached.name).read_bytes()) if byte)
        return Test(name, taken, numbers)

    def _find(self, mutant):
        tests = [test for test in self._tests if mutant.number in test.reached]
        if not tests:
            return None
        for some in rounds(tests, self._seconds):
            # A mutant that never ends counts as detected.
            limit = 5 + 6 * sum(test.seconds for test in some)
            if not self._passes([test.name for test in some], limit, {"VANTORO_MUTANT": str(mutant.number)}):
                return True
        return False

    def _passes(self, names, limit, environment):
        folder = tempfile.mkdtemp(prefix="mutant-")
        try:
            process = subprocess.Popen(
                [self._program, "--gtest_filter=" + ":".join(names), "--gtest_fail_fast", "--gtest_brief=1"],
                cwd=Path(self._program).parent, env=os.environ | environment | {
                    "TMPDIR": folder, "QT_QPA_PLATFORM": "offscreen", "XDG_RUNTIME_DIR": folder},
                stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                start_new_session=True, preexec_fn=limit_resources)
            try:
                return process.wait(limit) == 0
            except subprocess.TimeoutExpired:
                return False
            finally:
                try:
                    os.killpg(process.pid, signal.SIGKILL)
                except ProcessLookupError:
                    pass
                process.wait()
        finally:
            shutil.rmtree(folder, ignore_errors=True)


def rounds(tests, seconds):
    """The tests, fastest first, in a few groups that take this many seconds each."""
    begun = 0
    taken = 0.0
    for limit in (*ROUNDS, seconds):
        end = begun
        while end < len(tests) and (taken + tests[end].seconds < min(limit, seconds) or end == begun == 0):
            taken += tests[end].seconds
            end += 1
        if end > begun:
            yield tests[begun:end]
        begun = end


def limit_resources():
    resource.setrlimit(resource.RLIMIT_AS, (MOST_MEMORY, MOST_MEMORY))
    resource.setrlimit(resource.RLIMIT_FSIZE, (LARGEST_FILE, LARGEST_FILE))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))

#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Configuring with a library that is too old fails, and says which; with the oldest supported one it goes on."""

import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
MINIMUM = dict(re.findall(r"([a-z0-9.-]+)>=([0-9.]+)", (ROOT / "cmake/dependencies.cmake").read_text(encoding="utf-8")))


def just_below(version):
    *first, last = version.split(".")
    return ".".join([*first, str(int(last) - 1)]) + ".999"


class MinimumVersionsTests(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        (self.folder / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.25)\nproject(dependencies LANGUAGES CXX)\n"
            f"set(VANTORO_TESTS ON)\ninclude({ROOT}/cmake/dependencies.cmake)\n", encoding="utf-8")
        self.libraries = {}
        for name in MINIMUM:
            place = subprocess.run(["pkg-config", "--variable=pcfiledir", name], capture_output=True, text=True,
                                   check=True).stdout.strip()
            text = Path(place, f"{name}.pc").read_text(encoding="utf-8")
            # They would ask for each other's versions.
            self.libraries[name] = re.sub(r"^Requires.*\n", "", text, flags=re.MULTILINE)

    def configure(self, versions):
        """The exit status and output of configuring where libraries have these versions."""
        for name, version in versions.items():
            text = re.sub(r"^Version:.*$", f"Version: {version}", self.libraries[name], flags=re.MULTILINE)
            (self.folder / f"{name}.pc").write_text(text, encoding="utf-8")
        # Looks for the libraries again, but not for the compiler.
        result = subprocess.run(["cmake", "-S", self.folder, "-B", self.folder / "build", "-G", "Ninja",
                                 "-U", "__pkg_config_checked_*"], timeout=120, stdout=subprocess.PIPE,
                                stderr=subprocess.STDOUT, text=True, check=False,
                                env=dict(os.environ, PKG_CONFIG_PATH=str(self.folder), LC_ALL="C"))
        return result.returncode, result.stdout

    def test_theOldestSupportedLibrariesAreAccepted(self):
        self.assertGreaterEqual(len(MINIMUM), 8)
        status, said = self.configure(MINIMUM)
        self.assertEqual(status, 0, said)

    def test_anOlderLibraryIsRefusedByName(self):
        for name, minimum in MINIMUM.items():
            with self.subTest(name):
                old = just_below(minimum)
                status, said = self.configure({**MINIMUM, name: old})
                self.assertEqual(status, 1)
                self.assertIn(f"Package '{name}' has version '{old}', required version is '>= {minimum}'", said)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *(f"MinimumVersionsTests.test_{name}" for name in sys.argv[1:])])

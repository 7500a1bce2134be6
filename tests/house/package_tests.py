#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Packages of different formats are compared by what they install; the source archive depends on the sources alone."""

import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
DEBIAN = ("usr/bin/vantoro", "usr/lib/x86_64-linux-gnu/vantoro/module.so", "usr/share/man/man1/vantoro.1.gz",
          "usr/share/zsh/vendor-completions/_vantoro", "usr/share/doc/vantoro/copyright")
ARCH = ("usr/bin/vantoro", "usr/lib/vantoro/module.so", "usr/share/man/man1/vantoro.1",
        "usr/share/zsh/site-functions/_vantoro", ".PKGINFO")


def run(*command, **settings):
    return subprocess.run(command, capture_output=True, text=True, timeout=60, check=False,
                          env={**os.environ, **settings})


class PackageTests(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.path = Path(self.folder.name)

    def tree(self, name, files):
        for file in files:
            path = self.path / name / file
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text("content", encoding="utf-8")
        return self.path / name

    def compared(self, other_files):
        """What the comparison of Debian's package with another one says."""
        tree = self.tree("debian", DEBIAN)
        control = self.tree("debian", ["DEBIAN/control"]) / "DEBIAN/control"
        control.write_text("Package: vantoro\nVersion: 1\nArchitecture: all\nMaintainer: A <a@b.invalid>\n"
                           "Description: tried\n", encoding="utf-8")
        first, other = self.path / "vantoro.deb", self.path / "vantoro.pkg.tar.gz"
        self.assertEqual(run("dpkg-deb", "--build", tree, first).returncode, 0)
        tree = self.tree("arch", other_files)
        self.assertEqual(run("tar", "--create", "--gzip", f"--file={other}", f"--directory={tree}",
                             *(path.name for path in tree.iterdir())).returncode, 0)
        return run(ROOT / "packaging/compare-packages", first, other)

    def test_packagesWithTheSameFilesAreEqual(self):
        result = self.compared(ARCH)
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "", ""))

    def test_aFileThatIsMissingIsNamed(self):
        result = self.compared(ARCH[1:])
        self.assertEqual(result.returncode, 1)
        self.assertIn("-usr/bin/vantoro", result.stdout)

    def test_aFileTooManyIsNamed(self):
        result = self.compared((*ARCH, "usr/bin/other"))
        self.assertEqual(result.returncode, 1)
        self.assertIn("+usr/bin/other", result.stdout)

    def test_equalTreesGiveEqualArchives(self):
        archives = [self.path / "first.tar.gz", self.path / "second.tar.gz"]
        for archive, zone in zip(archives, ("UTC", "Pacific/Kiritimati")):
            self.assertEqual(run(ROOT / "packaging/source-archive", archive, TZ=zone).stderr, "")
        self.assertEqual(archives[0].read_bytes(), archives[1].read_bytes())
        names = run("tar", "--list", f"--file={archives[0]}").stdout.splitlines()
        self.assertEqual({name.split("/")[0] for name in names}, {names[0].split("/")[0]})
        self.assertIn("CMakeLists.txt", {name.partition("/")[2] for name in names})


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *(f"PackageTests.test_{name}" for name in sys.argv[1:])])

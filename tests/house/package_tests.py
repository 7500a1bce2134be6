#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Packages of different formats are compared by what they install; the source archive depends on the sources alone."""

import os
import shutil
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

    def archive(self, name, mode, time):
        """The archive of a small tree whose files have this mode and time."""
        tree = self.path / name
        for file in ("packaging/source-archive", "packaging/debian/changelog", "CMakeLists.txt"):
            copy = tree / file
            copy.parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(ROOT / file, copy)
            copy.chmod(mode)
            os.utime(copy, (time, time))
        self.assertEqual(run("git", "init", "--quiet", tree).returncode, 0)
        archive = self.path / f"{name}.tar.gz"
        self.assertEqual(run("bash", tree / "packaging/source-archive", archive).stderr, "")
        return archive

    def test_equalTreesGiveEqualArchives(self):
        first = self.archive("first", 0o644, 1_000_000_000)
        second = self.archive("second", 0o600, 1_500_000_000)
        self.assertEqual(first.read_bytes(), second.read_bytes())
        names = run("tar", "--list", f"--file={first}").stdout.splitlines()
        self.assertEqual([name.partition("/")[2] for name in names],
                         ["CMakeLists.txt", "packaging/debian/changelog", "packaging/source-archive"])


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *(f"PackageTests.test_{name}" for name in sys.argv[1:])])

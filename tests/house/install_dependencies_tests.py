#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What tools/install-dependencies installs, says and asks for, on several systems."""

import subprocess
import sys
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent))
from fake_system import SCRIPT, FakeSystem  # noqa: E402

DEBIAN = ["apt-cache", "apt-get", "dpkg-query"]


def rows():
    lines = (SCRIPT.parent / "dependencies.txt").read_text(encoding="utf-8").splitlines()
    return [line.split() for line in lines if line and not line.startswith("#")]


def named(column, *purposes):
    """The table's packages in a column, each once, without those that only some releases have."""
    names = (row[column] for row in rows() if row[0] in purposes)
    return list(dict.fromkeys(name for name in names if not name.startswith("?")))


def words(command):
    """What a shell makes of a command."""
    return subprocess.run(["bash", "-c", f"printf '%s\\n' {command}"], capture_output=True, text=True, timeout=60,
                          check=True).stdout.splitlines()


class InstallDependenciesTests(unittest.TestCase):
    def system(self, *programs, **settings):
        system = FakeSystem(*programs, **settings)
        self.addCleanup(system.close)
        return system

    def installed_with(self, *options):
        """The packages that Debian installs."""
        system = self.system(*DEBIAN)
        self.assertEqual(system.run(*options).returncode, 0)
        words = system.calls()[-1].split()
        return words[words.index("--no-install-recommends") + 1:]

    def asked_of(self, system, *options):
        """The words of the one line that says what to type."""
        result = system.run(*options)
        self.assertEqual((result.returncode, result.stdout, system.calls()), (1, "", []))
        said, command = result.stderr.split("type: ")
        self.assertEqual(said, "install-dependencies: packages are missing; ")
        self.assertEqual(command.count("\n"), 1)
        return words(command)

    def test_nothingIsSaidOrDoneIfNothingIsMissing(self):
        system = self.system(*DEBIAN, installed=named(1, "program"))
        result = system.run()
        self.assertEqual((result.returncode, result.stdout, result.stderr, system.calls()), (0, "", "", []))

    def test_onlyWhatIsMissingIsInstalled(self):
        system = self.system(*DEBIAN, installed=[name for name in named(1, "program") if name not in ("cmake", "g++")])
        system.run()
        self.assertTrue(system.calls()[-1].endswith("--yes install --no-install-recommends cmake g++"), system.calls())

    def test_runningTakesAboutADozenPackages(self):
        installed = self.installed_with()
        self.assertEqual(installed, named(1, "program"))
        self.assertLessEqual(len(installed), 15)

    def test_eachOptionAddsItsPackages(self):
        for option, purposes in {
            "--session": ["session"],
            "--tests": ["session", "tests"],
            "--benchmarks": ["session", "tests", "benchmarks"],
            "--applications": ["session", "tests", "applications"],
            "--desktops": ["session", "tests", "desktops"],
            "--coverage": ["session", "tests", "coverage"],
            "--mutants": ["session", "tests", "mutants"],
            "--packages": ["packages"],
        }.items():
            with self.subTest(option):
                self.assertEqual(self.installed_with(option), named(1, "program", *purposes))

    def test_whatOnlySomeReleasesHaveIsInstalledThere(self):
        needed = named(1, "program", "session", "tests")
        for release, installed, command in (
            ([], needed, None),
            (["ffplay"], needed, "ffplay"),
            (["ffplay"], needed[1:], f"{needed[0]} ffplay"),
            (["ffplay"], [*needed, "ffplay"], None),
        ):
            with self.subTest(release=release, installed=len(installed)):
                system = self.system(*DEBIAN, installed=installed, release=release)
                self.assertEqual(system.run("--tests").returncode, 0)
                installing = [call.partition("--yes install --no-install-recommends ")[2] for call in system.calls()]
                self.assertEqual(installing[-1:], [command] if command else [])

    def test_optionsAddUp(self):
        self.assertEqual(set(self.installed_with("--session", "--packages")), set(named(1, "program", "session", "packages")))

    def test_anUnknownOptionIsAnError(self):
        system = self.system(*DEBIAN)
        result = system.run("--everything")
        self.assertEqual((result.returncode, system.calls()), (2, []))
        self.assertIn("usage: ", result.stderr)

    def test_itSaysHowMuchItFetchesBeforeItBegins(self):
        system = self.system(*DEBIAN, installed=named(1, "program")[1:], broken="--yes install")
        said = system.run().stderr.splitlines()
        self.assertEqual(said[0], "Installing cmake: 214 packages, 92.0 MB to download, 420 MB on disk")

    def test_inALogItSaysNothingMore(self):
        result = self.system(*DEBIAN).run()
        self.assertEqual((result.stdout, result.stderr.count("\n")), ("", 1))

    def test_onATerminalItShowsHowFarItIs(self):
        shown = self.system(*DEBIAN).shown_on_terminal()
        self.assertIn("\r\x1b[KDownloading: 37 %\r\x1b[KInstalling: 64 %\r\x1b[K", shown)
        self.assertNotIn("noise", shown)
        self.assertTrue(shown.endswith("\r\x1b[K"), shown)

    def test_itShowsWhyItFailed(self):
        for broken in ("update", "--yes install"):
            with self.subTest(broken):
                result = self.system(*DEBIAN, broken=broken).run()
                self.assertEqual(result.returncode, 1)
                self.assertIn("E: it is broken", result.stderr)
                self.assertIn("to try again, type: apt-get install --no-install-recommends cmake", result.stderr)

    def test_aUserInstallsWithSudo(self):
        system = self.system(*DEBIAN, "sudo", user=1000)
        self.assertEqual(system.run().returncode, 0)
        self.assertTrue(all(call.startswith("sudo ") for call in system.calls()[::2]), system.calls())
        self.assertIn("--yes install", system.calls()[-1])

    def test_withoutRootAndSudoItSaysWhatToType(self):
        asked = self.asked_of(self.system(*DEBIAN, user=1000))
        self.assertEqual(asked[:2], ["su", "-c"])
        self.assertEqual(asked[2].split(), ["apt-get", "install", "--no-install-recommends", *named(1, "program")])

    def test_otherSystemsSayWhatToType(self):
        for programs, column, command in (
            (("dnf", "rpm"), 2, ["dnf", "install"]),
            (("pacman",), 3, ["pacman", "-S", "--needed"]),
            (("zypper", "rpm"), 4, ["zypper", "install"]),
        ):
            with self.subTest(command):
                needed = named(column, "program", "session")
                system = self.system(*programs, "sudo", user=1000, installed=needed[:5])
                self.assertEqual(self.asked_of(system, "--session"), ["sudo", *command, *needed[5:]])
                system = self.system(*programs, user=1000)
                self.assertEqual(words(self.asked_of(system)[2]), [*command, *named(column, "program")])
                self.assertEqual(self.asked_of(self.system(*programs)), [*command, *named(column, "program")])

    def test_otherSystemsSayNothingIfNothingIsMissing(self):
        for programs, column in ((("dnf", "rpm"), 2), (("pacman",), 3), (("zypper", "rpm"), 4)):
            with self.subTest(programs):
                result = self.system(*programs, installed=named(column, "program")).run()
                self.assertEqual((result.returncode, result.stderr), (0, ""))

    def test_otherSystemsNameDebiansPackagesForTests(self):
        result = self.system("dnf", "rpm", installed=named(2, "program", "session")).run("--tests")
        self.assertEqual(result.returncode, 0)
        self.assertIn("libgtest-dev", result.stderr)

    def test_anUnknownSystemGetsDebiansNamesAndGoesOn(self):
        result = self.system().run()
        self.assertEqual(result.returncode, 0)
        self.assertIn(" ".join(named(1, "program")), result.stderr)

    def test_everySystemHasNamesForRunning(self):
        self.assertEqual([row for row in rows() if row[0] in ("program", "session") and len(row) != 5], [])


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *(f"InstallDependenciesTests.test_{name}" for name in sys.argv[1:])])

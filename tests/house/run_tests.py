#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What ./run asks for, builds and starts, in a tree whose tools only note how they are called."""

import os
import pty
import shutil
import socket
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
NOTE = 'echo "${0##*/} $*" >>"$calls"\n'
TOOLS = {
    "tools/install-dependencies": "",
    "tools/session": 'while [ "$1" != -- ]; do shift; done; shift; exec "$@"',
    "tools/demonstration": '"$@" record',
    "bin/pw-cli": "",
    "bin/cmake": """
        echo "[1/1] building"
        [ "$1" != "$broken" ] || { echo "error: it is broken"; exit 1; }
        mkdir -p build/release
        printf '#!/bin/bash\\necho "vantoro $*"\\n' >build/release/vantoro
        chmod +x build/release/vantoro""",
}


class RunTests(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        shutil.copy(ROOT / "run", self.folder)
        for name, text in TOOLS.items():
            (self.folder / name).parent.mkdir(exist_ok=True)
            (self.folder / name).write_text(f"#!/bin/bash\n{NOTE}{text}\n", encoding="utf-8")
            (self.folder / name).chmod(0o755)
        self.environment = {"PATH": f"{self.folder}/bin:{os.environ['PATH']}", "HOME": str(self.folder),
                            "calls": str(self.folder / "calls"), "XDG_RUNTIME_DIR": str(self.folder)}

    def run_it(self, *arguments, **variables):
        return subprocess.run([self.folder / "run", *arguments], env={**self.environment, **variables},
                              stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=60, check=False)

    def start_sound_server(self):
        server = socket.socket(socket.AF_UNIX)
        server.bind(str(self.folder / "pipewire-0"))
        self.addCleanup(server.close)

    def calls(self):
        return (self.folder / "calls").read_text(encoding="utf-8").splitlines()

    def test_onADesktopItBuildsOnlyTheProgramAndOpensTheWindow(self):
        result = self.run_it(WAYLAND_DISPLAY="wayland-0")
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "vantoro \n", "Building...\n"))
        self.assertEqual(self.calls(), ["install-dependencies ", "cmake --preset release",
                                        "cmake --build --preset release --target vantoro"])

    def test_withASoundServerACommandNeedsNoPrivateDesktop(self):
        self.start_sound_server()
        self.assertEqual(self.run_it("devices", "--help").stdout, "vantoro devices --help\n")
        self.assertIn("install-dependencies ", self.calls())

    def test_withoutASoundServerACommandRunsInAPrivateDesktop(self):
        self.assertEqual(self.run_it("devices").stdout, "vantoro devices\n")
        self.assertEqual(self.calls()[0], "install-dependencies --session")
        self.assertTrue(self.calls()[-1].startswith("session -- env "), self.calls())

    def test_withoutADesktopItRecordsTestSound(self):
        result = self.run_it()
        self.assertEqual(result.stdout, "The recording is in vantoro record\n")
        self.assertEqual(self.calls()[0], "install-dependencies --session")

    def test_aBrokenBuildIsShown(self):
        for step in ("--preset", "--build"):
            with self.subTest(step):
                result = self.run_it("devices", broken=step)
                self.assertEqual((result.returncode, result.stdout), (1, ""))
                self.assertIn("error: it is broken", result.stderr)

    def test_aBuildShowsItsProgressOnATerminal(self):
        terminal, end = pty.openpty()
        subprocess.run([self.folder / "run"], env={**self.environment, "DISPLAY": ":0"}, stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL, stderr=end, timeout=60, check=True)
        self.assertIn(b"[1/1] building", os.read(terminal, 65536))
        self.assertEqual(self.calls()[-1], "cmake --build --preset release --target vantoro")
        os.close(end)
        os.close(terminal)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *(f"RunTests.test_{name}" for name in sys.argv[1:])])

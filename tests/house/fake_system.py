# SPDX-License-Identifier: GPL-3.0-or-later
"""A system with a package manager that installs nothing: the programs that tools/install-dependencies finds there."""

import os
import pty
import shutil
import subprocess
import tempfile
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "tools/install-dependencies"
REAL = ["awk", "cat", "echo", "env", "grep", "mktemp", "rm", "sed", "sh", "tr", "xargs"]
SECONDS = 60

# $calls gets a line per call; $installed holds a line per package, and $release one per package that there is.
FAKES = {
    "id": 'echo "$user"',
    "sudo": 'echo "sudo $*" >>"$calls"; exec "$@"',
    "dpkg-query": 'for name; do ! grep -qxF -- "$name" "$installed" || echo "$name installed"; done',
    "apt-get": """
        echo "apt-get $*" >>"$calls"
        echo "noise of apt-get"
        case "$*" in
            *"$broken"*) echo "E: it is broken"; exit 100 ;;
            *--assume-no*)
                echo "0 upgraded, 214 newly installed, 0 to remove and 3 not upgraded."
                echo "Need to get 92.0 MB of archives."
                echo "After this operation, 420 MB of additional disk space will be used."
                exit 1 ;;
            *Status-Fd=3*)
                echo "dlstatus:1:37.5:Retrieving file 1 of 2" >&3
                echo "pmstatus:libfoo1:amd64:64.2857:Unpacking libfoo1:amd64 (1:2.3)" >&3 ;;
        esac""",
    "apt-cache": '[ "$1" = show ] && grep -qxF -- "$2" "$release"',
    "rpm": 'for name; do :; done; grep -qxF -- "$name" "$installed"',
    "dnf": 'echo "dnf $*" >>"$calls"',
    "zypper": 'echo "zypper $*" >>"$calls"',
    "pacman": """
        [ "$1" = --deptest ] || { echo "pacman $*" >>"$calls"; exit; }
        shift
        for name; do grep -qxF -- "$name" "$installed" || { echo "$name"; missing=yes; }; done
        [ -z "$missing" ] || exit 127""",
}


class FakeSystem:
    def __init__(self, *programs, user=0, installed=(), release=(), broken="nothing"):
        self._folder = tempfile.TemporaryDirectory()
        folder = Path(self._folder.name)
        self._calls = folder / "calls"
        self._calls.touch()
        (folder / "installed").write_text("\n".join(installed), encoding="utf-8")
        (folder / "release").write_text("\n".join(release), encoding="utf-8")
        for program in REAL:
            (folder / program).symlink_to(shutil.which(program))
        for program in ("id", *programs):
            (folder / program).write_text(f"#!/bin/bash\n{FAKES[program]}\n", encoding="utf-8")
            (folder / program).chmod(0o755)
        self._environment = {"PATH": str(folder), "TMPDIR": str(folder), "user": str(user), "broken": broken,
                             "calls": str(self._calls), "installed": str(folder / "installed"),
                             "release": str(folder / "release")}

    def close(self):
        self._folder.cleanup()

    def run(self, *options):
        return subprocess.run([SCRIPT, *options], env=self._environment, stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, timeout=SECONDS, check=False)

    def shown_on_terminal(self, *options):
        terminal, end = pty.openpty()
        subprocess.run([SCRIPT, *options], env=self._environment, stdin=subprocess.DEVNULL, stdout=end, stderr=end,
                       timeout=SECONDS, check=True)
        os.close(end)
        shown = b""
        try:
            while piece := os.read(terminal, 65536):
                shown += piece
        except OSError:  # everything is read
            pass
        os.close(terminal)
        return shown.decode()

    def calls(self):
        return self._calls.read_text(encoding="utf-8").splitlines()

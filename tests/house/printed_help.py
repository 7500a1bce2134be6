# SPDX-License-Identifier: GPL-3.0-or-later
"""The commands and options that the program's help prints."""

import os
import re
import subprocess
from pathlib import Path

PROGRAM = os.environ.get("VANTORO_PROGRAM", str(Path(__file__).resolve().parents[2] / "build/release/vantoro"))
HEADING = re.compile(r"(Commands|Options?(?: of (?P<command>\w+))?):")
ENTRY = re.compile(r"  (?P<names>\w+|(?:-\w, )?--[a-z-]+)")


def read():
    """The options of each command; under "", the commands and the options without a command."""
    text = subprocess.run([PROGRAM, "--help"], capture_output=True, text=True, check=True, timeout=60).stdout
    known, under = {"": set()}, None
    for line in text.splitlines():
        if heading := HEADING.fullmatch(line):
            under = known.setdefault(heading["command"] or "", set())
        elif not line.startswith(" "):
            under = None
        elif under is not None and (entry := ENTRY.match(line)):
            under.update(entry["names"].split(", "))
    if not {"record", "--help"} <= known[""] or "--seconds" not in known["record"]:
        raise AssertionError(f"the help cannot be read: {text}")
    return known

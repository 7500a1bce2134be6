#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs each case in a private desktop of its own, and prints what came of it. Arguments select rows by name."""

import dataclasses
import os
import subprocess
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROOT = HERE.parents[1]
PICTURES = ROOT / "build/desktops"
LOGS = ROOT / "build/logs/desktops"
SECONDS = 180


@dataclasses.dataclass(frozen=True)
class Row:
    name: str
    packages: tuple  # whose versions the table shows
    file: str
    case: str
    bus: tuple = ()  # the command for a session bus that starts services


SERVICES = ("dbus-run-session", "--")

ROWS = (
    Row("Xfce: both meters in the panel", ("xfce4-panel",), "panel_tests.py", "xfceShowsBothMeters"),
    Row("LXQt: both meters in the panel", ("lxqt-panel",), "panel_tests.py", "lxqtShowsBothMeters"),
    Row("sway and Waybar: both meters in the panel", ("sway", "waybar"), "wayland_tests.py", "waybarShowsBothMeters"),
    Row("sway: a closed window comes back", ("sway",), "wayland_tests.py", "closedWindowComesBackOnASecondStart"),
    Row("KDE: both meters in the panel", ("plasma-workspace",), "large_desktop_tests.py", "plasmaShowsBothMeters",
        SERVICES),
    Row("KDE, dark panel above light windows: both meters", ("plasma-workspace",), "large_desktop_tests.py",
        "darkPlasmaShowsBothMeters", SERVICES),
    Row("GNOME with AppIndicator: both meters and their menu", ("gnome-shell", "gnome-shell-extension-appindicator"),
        "large_desktop_tests.py", "gnomeShowsBothMetersWithTheExtension", SERVICES),
    Row("elogind: sleep waits for the sound", ("elogind",), "login_tests.py",
        "elogindsSuspendWaitsForTheSoundWhichIsSaved"),
    Row("The desktop portal with GTK's back end: an idle machine stays awake",
        ("xdg-desktop-portal", "xdg-desktop-portal-gtk", "elogind"), "login_tests.py",
        "idleMachineStaysAwakeWhereThePortalsBackEndRefuses", SERVICES),
    Row("sway: a screen at 150 %", ("sway",), "wayland_tests.py", "windowIsOperatedOnAScreenOfFractionalScale"),
)


def version(package):
    found = subprocess.run(["dpkg-query", "--show", "--showformat", "${Version}", package], capture_output=True,
                           text=True, check=False)
    return f"{package} {found.stdout or unpacked_version(package)}"


def unpacked_version(package):
    """Of a package that cannot be installed."""
    return next((path.name.split("_")[1] for path in PICTURES.glob(f"{package}_*.deb")), "?")


def outcome(row):
    """What came of the case, and whether it is good."""
    log = LOGS / f"{row.case}.log"
    with log.open("w") as output:
        try:
            result = subprocess.run(
                [ROOT / "tools/session", "--screen", "--long-cycles", "--", *row.bus, HERE / row.file, row.case],
                stdin=subprocess.DEVNULL, stdout=output, stderr=output, timeout=SECONDS, check=False,
                env={**os.environ, "VANTORO_DESKTOP_PICTURES": str(PICTURES)})
        except subprocess.TimeoutExpired:
            return f"not finished after {SECONDS} s", False
    if result.returncode == 0:
        return "works", True
    errors = [line for line in log.read_text(errors="replace").splitlines() if "Error" in line.split(":")[0]]
    return (errors or ["failed"])[-1], False


def main():
    LOGS.mkdir(parents=True, exist_ok=True)
    print("| What | Versions | |\n|---|---|---|", flush=True)
    good = True
    for row in ROWS:
        if len(sys.argv) == 1 or any(name in row.name for name in sys.argv[1:]):
            said, is_good = outcome(row)
            print(f"| {row.name} | {', '.join(map(version, row.packages))} | {said} |", flush=True)
            good = good and is_good
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Prints how the recording of each application compares with the output's monitor.

Run as: tools/session [--screen] -- tests/applications/table.py [NAME...]
"""

import subprocess
import sys
import traceback

sys.dont_write_bytecode = True

import comparison  # noqa: E402
import browsers  # noqa: E402
import filters  # noqa: E402
import jack  # noqa: E402
import modules  # noqa: E402
import players  # noqa: E402
import scenes  # noqa: E402

APPLICATIONS = (*players.LIGHT, *players.HEAVY, *jack.LIGHT, *jack.HEAVY, *browsers.HEAVY, *modules.LIGHT,
                *filters.HEAVY, *scenes.LIGHT)
HEAD = ("| Application | Version | Level | Farthest band | Missing | Onset | End | Shift | Added | |\n"
        "|---|---|---|---|---|---|---|---|---|---|")


def version(package):
    found = subprocess.run(["dpkg-query", "--show", "--showformat", "${Version}", package], capture_output=True,
                           text=True, check=False)
    return found.stdout or "?"


def row(application):
    """The row, and whether the recording matches."""
    begin = f"| {application.name} | {version(application.package)} | "
    try:
        difference, faults, attempts = comparison.compare_fairly(application)
    except Exception as error:  # one failing application must not stop the others
        traceback.print_exc()
        return f"{begin}| | | | | | | {str(error).splitlines()[0]} |", False
    measured = (f"{difference.level:+.3f} dB", f"{difference.worst_band:+.3f} dB of {difference.bands}",
                f"{1000 * difference.missing * difference.heard:.0f} ms of {difference.heard:.1f} s",
                *(f"{1000 * seconds:.0f} ms" for seconds in (difference.onset, difference.end, difference.shift,
                                                             difference.added)))
    again = f" ({attempts} attempts)" if attempts > 1 else ""
    return f"{begin}{' | '.join(measured)} | {', '.join(faults) or 'the same'}{again} |", not faults


def main():
    chosen = [application for application in APPLICATIONS
              if len(sys.argv) == 1 or any(name in application.name for name in sys.argv[1:])]
    print(HEAD, flush=True)
    good = True
    for application in chosen:
        line, is_good = row(application)
        print(line, flush=True)
        good = good and is_good
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())

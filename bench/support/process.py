# SPDX-License-Identifier: GPL-3.0-or-later
"""Resources that a running program has used so far."""

import os
from pathlib import Path

_TICKS = os.sysconf("SC_CLK_TCK")


def processor_seconds(pid):
    fields = Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()
    return (int(fields[11]) + int(fields[12])) / _TICKS


def resident_megabytes(pid):
    return _number(f"/proc/{pid}/status", "VmRSS") / 1024


def wake_ups(pid):
    """The wake-ups of every thread so far."""
    return {task.name: _number(task / "status", "voluntary_ctxt_switches")
            for task in Path(f"/proc/{pid}/task").iterdir()}


def woken_since(before, pid):
    """Wake-ups since `wake_ups` was called, without threads that have ended since."""
    return sum(count - before.get(thread, 0) for thread, count in wake_ups(pid).items())


def _number(path, name):
    return next(int(line.split()[1]) for line in Path(path).read_text().splitlines() if line.startswith(f"{name}:"))

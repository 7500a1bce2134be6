# SPDX-License-Identifier: GPL-3.0-or-later
"""Processor time that a virtual machine's host gives to others: sound breaks then, whatever the program does."""

import os
import sys
import time
from pathlib import Path

PROCESSOR_TIMES = Path("/proc/stat")
ATTEMPTS = 3
FAILED_CHECK = 1  # crashes and sanitizer findings have other statuses, and are not repeated
SECONDS_THAT_BREAK_SOUND = 0.2
USUAL_SHARE = 0.01


def stolen_seconds(times=PROCESSOR_TIMES):
    """Stolen time of all processors since boot."""
    of_all = times.read_text().splitlines()[0].split()
    return int(of_all[8]) / os.sysconf("SC_CLK_TCK")


def is_disturbance(stolen, seconds, processors):
    return stolen > max(SECONDS_THAT_BREAK_SOUND, USUAL_SHARE * seconds * processors)


def undisturbed(run, times=PROCESSOR_TIMES):
    """The exit status of `run`, which is repeated if it fails while the machine is disturbed."""
    for attempt in range(1, ATTEMPTS + 1):
        began, stolen_before = time.monotonic(), stolen_seconds(times)
        status = run()
        stolen = stolen_seconds(times) - stolen_before
        disturbed = is_disturbance(stolen, time.monotonic() - began, os.cpu_count())
        if status != FAILED_CHECK or not disturbed or attempt == ATTEMPTS:
            break
        print(f"session: failed while the host took {stolen:.2f} s from this machine; once more", file=sys.stderr)
    return status

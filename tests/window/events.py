# SPDX-License-Identifier: GPL-3.0-or-later
"""Waits for events while the event loop runs, which also answers incoming calls."""

import time

from gi.repository import GLib

SECONDS_TO_HAPPEN = 30
# Not everything is announced: what is asked for is looked at this often besides.
LOOK_AGAIN_MILLISECONDS = 200


def let_events_happen():
    """Returns once an event was handled, or it is time to look again."""
    overdue = GLib.timeout_add(LOOK_AGAIN_MILLISECONDS, lambda: GLib.SOURCE_CONTINUE)
    GLib.MainContext.default().iteration(True)
    GLib.source_remove(overdue)
    while GLib.MainContext.default().iteration(False):
        pass


def wait_for(condition, what, timeout=SECONDS_TO_HAPPEN):
    """What the condition returns, as soon as that is something."""
    deadline = time.monotonic() + timeout
    while True:
        try:
            result = condition()
            if result:
                return result
        except GLib.Error:
            pass  # what it looks at has just gone, or does not answer yet
        if time.monotonic() > deadline:
            raise AssertionError(f"waited {timeout} s for {what}")
        let_events_happen()

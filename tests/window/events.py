# SPDX-License-Identifier: GPL-3.0-or-later
"""Waits for events while the event loop runs, which also answers incoming calls."""

import time

from gi.repository import GLib

SECONDS_TO_HAPPEN = 30
# Not every change sends an event, so conditions are also polled at this interval.
LOOK_AGAIN_MILLISECONDS = 200


def let_events_happen():
    """Returns after an event, or when it is time to poll."""
    overdue = GLib.timeout_add(LOOK_AGAIN_MILLISECONDS, lambda: GLib.SOURCE_CONTINUE)
    GLib.MainContext.default().iteration(True)
    GLib.source_remove(overdue)
    while GLib.MainContext.default().iteration(False):
        pass


def wait_for(condition, what, timeout=SECONDS_TO_HAPPEN):
    """The condition's result, as soon as it is true."""
    deadline = time.monotonic() + timeout
    while True:
        try:
            result = condition()
            if result:
                return result
        except GLib.Error:
            pass  # the object has just vanished, or does not answer yet
        if time.monotonic() > deadline:
            raise AssertionError(f"waited {timeout} s for {what}")
        let_events_happen()

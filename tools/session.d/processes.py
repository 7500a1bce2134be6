# SPDX-License-Identifier: GPL-3.0-or-later
"""Processes that cannot outlive the private desktop."""

import ctypes
import os
import signal
import time
from pathlib import Path

PR_SET_PDEATHSIG = 1
PR_SET_CHILD_SUBREAPER = 36
SECONDS_TO_END_POLITELY = 3.0
SECONDS_TO_END = 10.0

_libc = ctypes.CDLL(None, use_errno=True)


class ParentGone(Exception):
    """The parent process ended before this one could ask for a notification of its end."""


def _prctl(option, value):
    if _libc.prctl(option, ctypes.c_ulong(value), 0, 0, 0) != 0:
        raise OSError(ctypes.get_errno(), "prctl")


def adopt_orphans():
    """Makes orphaned descendants our children, so that none can escape."""
    _prctl(PR_SET_CHILD_SUBREAPER, 1)


def end_with_parent(parent, number):
    _prctl(PR_SET_PDEATHSIG, number)
    if os.getppid() != parent:
        raise ParentGone


def spawn(command, environment, mask, die_with=signal.SIGKILL, listener=None, log=None):
    """Starts a process that ends with this one, and returns its ID.

    With a log it is a daemon: detached from the terminal, silent. A listener is a listening socket that it inherits
    as from systemd, so that clients need not wait for the socket.
    """
    parent = os.getpid()
    pid = os.fork()
    if pid:
        return pid
    try:
        end_with_parent(parent, die_with)
        for number in (signal.SIGPIPE, signal.SIGXFSZ):
            signal.signal(number, signal.SIG_DFL)
        signal.pthread_sigmask(signal.SIG_SETMASK, mask)
        environment = dict(environment)
        if log is not None:
            os.setsid()
            os.dup2(os.open(os.devnull, os.O_RDONLY), 0)
            os.dup2(log, 1)
            os.dup2(log, 2)
        if listener is not None:
            os.dup2(listener.fileno(), 3)
            os.set_inheritable(3, True)  # if it was already number 3
            environment.update(LISTEN_FDS="1", LISTEN_PID=str(os.getpid()))
        os.execvpe(command[0], command, environment)
    except FileNotFoundError:
        os.write(2, f"session: {command[0]}: command not found\n".encode())
        os._exit(127)
    except BaseException as error:  # the parent's code must not continue in the child
        os.write(2, f"session: {command[0]}: {error}\n".encode())
        os._exit(126)


def reap():
    """The process IDs and wait statuses of the children that have ended."""
    ended = []
    while True:
        try:
            pid, status = os.waitpid(-1, os.WNOHANG)
        except ChildProcessError:
            return ended
        if pid == 0:
            return ended
        ended.append((pid, status))


def _descendants():
    children = {}
    for entry in Path("/proc").iterdir():
        if entry.name.isdigit():
            try:
                # The name in parentheses may contain anything, even spaces and parentheses.
                parent = (entry / "stat").read_text(errors="replace").rpartition(")")[2].split()[1]
            except (FileNotFoundError, ProcessLookupError):
                continue
            children.setdefault(int(parent), []).append(int(entry.name))
    found, pending = [], [os.getpid()]
    while pending:
        below = children.get(pending.pop(), [])
        found += below
        pending += below
    return found


def _signal_all(*numbers):
    for pid in _descendants():
        for number in numbers:
            try:
                os.kill(pid, number)
            except ProcessLookupError:
                break


def end_descendants():
    """Ends all our descendants: first with SIGTERM, then with SIGKILL. Returns when none is left."""
    start = time.monotonic()
    # A stopped process cannot receive SIGTERM without SIGCONT.
    _signal_all(signal.SIGTERM, signal.SIGCONT)
    while True:
        reap()
        try:
            os.waitid(os.P_ALL, 0, os.WEXITED | os.WNOHANG | os.WNOWAIT)
        except ChildProcessError:
            return
        elapsed = time.monotonic() - start
        if elapsed > SECONDS_TO_END:
            return
        if elapsed > SECONDS_TO_END_POLITELY:
            _signal_all(signal.SIGKILL)
        signal.sigtimedwait({signal.SIGCHLD}, 0.5)

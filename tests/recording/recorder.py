# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs the program under test and watches the recording folder."""

import ctypes
import os
import select
import signal
import struct
import subprocess
import time
from pathlib import Path

PROGRAM = os.environ.get("VANTORO_PROGRAM", str(Path(__file__).resolve().parents[2] / "build/release/vantoro"))
SECONDS_TO_END = 60
IN_ENGLISH = ("record", "--language", "en")

IN_MODIFY, IN_CREATE, IN_DELETE, IN_MOVED_TO = 0x2, 0x100, 0x200, 0x80


def wait_until_readable(descriptor, timeout):
    if not select.select([descriptor], [], [], timeout)[0]:
        raise AssertionError(f"nothing happened within {timeout} s")


class FolderWatch:
    """Watches events in a folder from construction on."""

    def __init__(self, folder):
        self._library = ctypes.CDLL(None, use_errno=True)
        self._descriptor = self._library.inotify_init1(os.O_CLOEXEC)
        mask = IN_MODIFY | IN_CREATE | IN_DELETE | IN_MOVED_TO
        if self._library.inotify_add_watch(self._descriptor, os.fsencode(str(folder)), mask) < 0:
            raise OSError(ctypes.get_errno(), f"{folder} cannot be watched")
        self._events = []

    def close(self):
        os.close(self._descriptor)

    def wait_for(self, condition, timeout=30):
        """The first new event (mask, name) for which the condition holds."""
        deadline = time.monotonic() + timeout
        while True:
            while self._events:
                event = self._events.pop(0)
                if condition(*event):
                    return event
            ready, _, _ = select.select([self._descriptor], [], [], max(0, deadline - time.monotonic()))
            if not ready:
                raise AssertionError("what was waited for did not happen in the folder")
            self._read()

    def wait_for_fragments(self, count, timeout=40):
        """Returns when this many fragments are in the temporary file."""
        for _ in range(count):
            self.wait_for(lambda mask, name: mask & IN_MODIFY and name.endswith(".partial.mov"), timeout)

    def _read(self):
        data = os.read(self._descriptor, 65536)
        while data:
            _, mask, _, length = struct.unpack_from("iIII", data)
            name = data[16:16 + length].rstrip(b"\0").decode()
            self._events.append((mask, name))
            data = data[16 + length:]


class Recording:
    """A recording that runs in the background."""

    def __init__(self, folder, *arguments, prefix=(), language="en", **options):
        Path(folder).mkdir(parents=True, exist_ok=True)
        self.watch = FolderWatch(folder)
        self._process = subprocess.Popen(
            [*prefix, PROGRAM, "record", "--language", language, "--folder", str(folder), *map(str, arguments)],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, **options)
        self.pid = self._process.pid

    def wait_until_written(self):
        """Returns when the temporary file holds its first second."""
        self.watch.wait_for_fragments(1)

    def stop(self, number=signal.SIGINT):
        self._process.send_signal(number)
        return self.finish()

    def kill(self):
        self._process.kill()
        return self.finish()

    def finish(self, timeout=SECONDS_TO_END):
        try:
            output, errors = self._process.communicate(timeout=timeout)
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.communicate()
            raise
        finally:
            self.watch.close()
        return Result(self._process.returncode, output, errors)


class Result:
    def __init__(self, status, output, errors):
        self.status = status
        self.output = output
        self.errors = errors

    def saved(self, but_for_a_part=False):
        """The final file of a successful recording, or of one whose partly unreadable file was kept and reported."""
        lines = self.output.splitlines()
        is_told = self.status == 3 and ".incomplete.mov" in self.errors
        if self.status != 0 and not (but_for_a_part and is_told) or len(lines) != 1:
            raise AssertionError(f"not saved: {self}")
        path = Path(lines[0])
        if not path.is_file():
            raise AssertionError(f"{path} is no file")
        return path

    def __str__(self):
        return f"status {self.status}, output {self.output!r}, errors {self.errors!r}"


def run(*arguments, timeout=SECONDS_TO_END, prefix=(), **options):
    result = subprocess.run([*prefix, PROGRAM, *map(str, arguments)], stdin=subprocess.DEVNULL, capture_output=True,
                            text=True, timeout=timeout, check=False, **options)
    return Result(result.returncode, result.stdout, result.stderr)


def record(folder, *arguments, **options):
    return run(*IN_ENGLISH, "--folder", folder, *arguments, **options)


def temporary_files(folder):
    return sorted(Path(folder).glob(".Vantoro-*.partial.mov"))

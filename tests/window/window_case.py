# SPDX-License-Identifier: GPL-3.0-or-later
"""The base of the test cases: a private home folder, and the program with its window in it."""

import contextlib
import os
import re
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "recording"))

import recorder  # noqa: E402
import sound  # noqa: E402
from accessible import ScreenReader  # noqa: E402
from events import wait_for  # noqa: E402
from hanging_disk import HangingDisk  # noqa: E402
from screen import Screen  # noqa: E402
from texts import ENGLISH  # noqa: E402

SECONDS_TO_END = 60
DYING_RECORDER = Path(recorder.PROGRAM).parent / "tests/crash/dying_recorder"
ELAPSED_TIME = re.compile(r"\d\d:\d\d")


class Program:
    """The program with its window, in the given environment."""

    def __init__(self, environment):
        self._errors = tempfile.TemporaryFile()
        self._process = subprocess.Popen([recorder.PROGRAM], env=environment, stdin=subprocess.DEVNULL,
                                         stdout=subprocess.DEVNULL, stderr=self._errors)
        self.pid = self._process.pid

    def send(self, number):
        self._process.send_signal(number)

    @property
    def has_ended(self):
        return self._process.poll() is not None

    def finish(self):
        """Waits for its end; returns the exit status."""
        wait_for(lambda: self.has_ended, f"the program to end\n{self.errors}", SECONDS_TO_END)
        return self._process.returncode

    def kill(self):
        """Kills it, in whatever state it is."""
        self._process.kill()
        self._process.wait()

    @property
    def errors(self):
        """Its standard error."""
        return os.pread(self._errors.fileno(), 65536, 0).decode(errors="replace")


class Window:
    """The window of a program, as its user and a screen reader see it."""

    def __init__(self, program, reader, screen):
        self.program = program
        self.frame = screen.main_window(program.pid)
        self.accessible = reader.application(program.pid)
        wait_for(lambda: screen.is_in_front(self.frame), "the window in front")

    @property
    def elapsed_time(self):
        return self.accessible.text(ELAPSED_TIME)

    def __getattr__(self, name):
        return getattr(self.accessible, name)


class WindowCase(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.reader = ScreenReader()
        cls.addClassCleanup(cls.reader.close)

    def setUp(self):
        temporary = tempfile.TemporaryDirectory(prefix="vantoro-window-")
        self.addCleanup(temporary.cleanup)
        self.home = Path(temporary.name)
        self.folder = self.home / "Videos/Vantoro"
        self.folder.mkdir(parents=True)
        self.screen = Screen()
        self.addCleanup(self.screen.close)
        self.set_preferences(appLanguage="en")

    def set_preferences(self, **preferences):
        file = self.home / ".config/vantoro/vantoro.conf"
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text("".join(["[General]\n", *(f"{key}={value}\n" for key, value in preferences.items())]))

    def start_program(self, **additions):
        """With these additional environment variables."""
        environment = {name: value for name, value in os.environ.items() if not name.startswith("XDG_")}
        environment.update(HOME=str(self.home), XDG_RUNTIME_DIR=os.environ["XDG_RUNTIME_DIR"], **additions)
        program = Program(environment)
        self.addCleanup(program.kill)
        return program

    def open_window(self, **additions):
        """Starts the program; returns its window, in front."""
        return Window(self.start_program(**additions), self.reader, self.screen)

    def hang(self, call, time=1):
        """The recording folder's disk stops responding at this call."""
        disk = HangingDisk(self.folder, self.home, call, time)
        self.addCleanup(disk.close)
        return disk

    def assert_ends_soon(self, program, seconds=10):
        """Returns the exit status. A disk that hangs is given up after 4 s; a busy machine takes longer."""
        begin = time.monotonic()
        status = program.finish()
        self.assertLess(time.monotonic() - begin, seconds)
        return status

    def leave_interrupted_recording(self, seconds):
        """Leaves a recording as a killed program does."""
        command = [DYING_RECORDER, self.folder, str(seconds * sound.RATE), "safe"]
        self.assertEqual(subprocess.run(command, check=False).returncode, -signal.SIGKILL)

    def add_microphone(self, name):
        """Adds a microphone whose name has no spaces."""
        result = subprocess.run(
            ["pactl", "load-module", "module-null-sink", "media.class=Audio/Source/Virtual",
             f"sink_name={name}", "channel_map=mono",
             f"sink_properties=node.description={name}"], check=True, capture_output=True, text=True)
        self.addCleanup(subprocess.run, ["pactl", "unload-module", result.stdout.strip()], check=True)

    def wait_until_ready(self, window):
        wait_for(lambda: window.control(ENGLISH["startRecording"]).is_enabled, "the record button to be enabled")

    def record(self, window):
        """Presses the record button, and returns when the first second is on disk."""
        self.wait_until_ready(window)
        with self.until_written():
            window.control(ENGLISH["startRecording"]).press()
        wait_for(lambda: window.shows(ENGLISH["recording"]), "the window to say that it records")

    @contextlib.contextmanager
    def until_written(self):
        """Ends when the first second of the recording started within is on disk."""
        watch = recorder.FolderWatch(self.folder)
        try:
            yield
            watch.wait_for_fragments(1)
        finally:
            watch.close()

    def saved_recording(self, window):
        """The only recording, once the window has shown that it is saved, and under which name."""
        window.text(ENGLISH["recordingSaved"])
        path = self.only_recording()
        window.text(path.name)
        return path

    def only_recording(self):
        path, = self.folder.iterdir()
        self.assertEqual(path.suffix, ".m4a")
        return path

    def assert_holds(self, path, *frequencies):
        """The end of the recording is these tones of `sound.tone`, in both channels."""
        for channel in sound.decoded(path):
            end = len(channel) / sound.RATE
            self.assertGreater(end, 0.9)
            for frequency in frequencies:
                self.assertGreater(sound.usual_amplitude(channel, frequency, max(0, end - 1), end - 0.1), 0.15)


def main(case_class):
    """With a name, runs only that case; otherwise all."""
    names = [f"{case_class.__name__}.test_{name}" for name in sys.argv[1:]]
    # The accessibility client library calls deprecated functions that have no successors yet.
    unittest.main(argv=[sys.argv[0], *names], module="__main__", warnings="ignore")

#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Commands that control a recording of another process over the session bus, also if that hangs or dies."""

import json
import os
import signal
import subprocess
import sys
import threading
import time

from gi.repository import Gio

sys.dont_write_bytecode = True

import hanging_bus  # noqa: E402
import recorder  # noqa: E402
import sound  # noqa: E402
from case import main  # noqa: E402
from remote_case import ENGLISH, SECONDS_TO_ANSWER, RemoteCase, remote, status  # noqa: E402

# Five seconds of silence, and a margin for a busy machine.
SECONDS_TO_GIVE_UP = 10
SILENT = "Vantoro is running, but does not answer.\n"
NOT_RUNNING = "Vantoro is not running.\n"


class Follower:
    """Reads the lines of `status --follow`."""

    def __init__(self, *arguments):
        self.process = subprocess.Popen([recorder.PROGRAM, "status", "--follow", *ENGLISH, *arguments],
                                        stdout=subprocess.PIPE, text=True)
        self.lines = []
        self._changed = threading.Condition()
        self._thread = threading.Thread(target=self._read)
        self._thread.start()

    def _read(self):
        for line in self.process.stdout:
            with self._changed:
                self.lines.append(line.rstrip("\n"))
                self._changed.notify_all()

    def wait_for(self, condition):
        """The first line for which it holds."""
        with self._changed:
            if not self._changed.wait_for(lambda: any(map(condition, self.lines)), SECONDS_TO_ANSWER):
                raise AssertionError(f"no such line in {self.lines}")
            return next(filter(condition, self.lines))

    def end(self):
        """The exit status after Ctrl+C."""
        self.process.send_signal(signal.SIGINT)
        return self.finish()

    def finish(self):
        code = self.process.wait(SECONDS_TO_ANSWER)
        self._thread.join()
        self.process.stdout.close()
        return code


class Remote(RemoteCase):
    def follow(self, *arguments):
        follower = Follower(*arguments)
        self.addCleanup(lambda: follower.process.poll() is None and follower.end())
        return follower

    def assert_fails(self, result, text):
        self.assertEqual((result.status, result.output, result.errors), (1, "", text))

    def test_withoutAProgramTheCommandsSaySo(self):
        for command in "stop", "status":
            self.assert_fails(remote(command), NOT_RUNNING)
        result = remote("status", "--json")
        self.assertEqual((result.status, result.errors), (1, NOT_RUNNING))
        self.assertEqual(json.loads(result.output)["state"], "notRunning")
        self.assertEqual(recorder.run("stop").errors, "Vantoro 没有运行。\n")

    def test_startWithoutADesktopSaysSo(self):
        environment = {name: value for name, value in os.environ.items()
                       if name not in ("DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM")}
        for command in "start", "toggle":
            result = remote(command, env=environment)
            self.assertEqual((result.status, result.output), (1, ""))
            self.assertIn("There is no desktop to show a window on.", result.errors)

    def test_stopPrintsThePathAloneWhenTheRecordingIsSaved(self):
        with sound.tone(440):
            recording = self.record()
            result = remote("stop")
        self.assertEqual((result.status, result.errors), (0, ""))
        path = result.saved()
        self.assertEqual(path.parent, self.folder)
        channel, _ = sound.decoded(path)
        self.assertGreater(len(channel) / sound.RATE, 0.9)
        self.assertEqual(recording.finish().saved(), path)
        self.assert_fails(remote("stop"), NOT_RUNNING)

    def test_toggleStopsARecording(self):
        recording = self.record()
        path = remote("toggle").saved()
        self.assertEqual(recording.finish().saved(), path)

    def test_marksAreChaptersOfTheFile(self):
        recording = self.record()
        self.assertEqual([recorder.run("mark", *text, *ENGLISH).output for text in (["What for?"], [])],
                         ["1\n", "2\n"])
        chapters = sound.probe(remote("stop").saved(), "-show_chapters")["chapters"]
        self.assertEqual([chapter["tags"]["title"] for chapter in chapters], ["What for?", "Mark 2"])
        recording.finish()
        self.assert_fails(remote("mark"), NOT_RUNNING)

    def test_startBesideARecordingStartsNoOther(self):
        recording = self.record()
        result = remote("start")
        self.assertEqual((result.status, result.output, result.errors), (0, "", "Vantoro is already recording.\n"))
        recording.stop().saved()
        self.assertEqual(len(list(self.folder.iterdir())), 1)

    def test_pathsOfAnyNameArePrintedAsTheyAre(self):
        folder = self.folder / "100 % — 会议 'a' \"b\""
        recording = self.record(folder=folder)
        self.assertEqual(status()["folder"], str(folder))
        self.assertEqual(remote("stop").saved().parent, folder)
        recording.finish()

    def test_ofSeveralRecordingsTheLatestIsStoppedFirst(self):
        folders = [self.folder / name for name in ("first", "second", "third")]
        recordings = [self.record(folder=folder) for folder in folders]
        for folder, recording in reversed(list(zip(folders, recordings))):
            self.assertEqual(status()["folder"], str(folder))
            self.assertEqual(remote("stop").saved().parent, folder)
            recording.finish().saved()

    def test_statusHoldsWhatIsRecordedWhereAndHowLoud(self):
        recording = self.record("--no-system-audio")
        self.enterContext(sound.tone(440, "--into", sound.MICROPHONE))
        follower = self.follow("--json")
        told = json.loads(follower.wait_for(lambda line: json.loads(line)["sources"]["microphone"]["level"] > 0.3))
        self.assertEqual(follower.end(), 0)
        self.assertEqual(told["state"], "recording")
        self.assertEqual(told["folder"], str(self.folder))
        self.assertEqual(told["sources"]["microphone"]["id"], sound.MICROPHONE)
        self.assertEqual(told["sources"]["systemAudio"], {"on": False, "level": 0, "condition": "delivering"})
        self.assertIsNone(told["lastRecording"])
        self.assertRegex(remote("status").output, r"^Recording \d\d:\d\d\n$")
        recording.stop()

    def test_followerIsToldOfEachChange(self):
        follower = self.follow()
        follower.wait_for(lambda line: line == NOT_RUNNING.strip())
        recording = self.record()
        for second in "Recording 00:00", "Recording 00:01", "Recording 00:02":
            follower.wait_for(second.__eq__)
        recording.stop()
        follower.wait_for(lambda line: line.startswith("Saving "))
        follower.wait_for(lambda line: follower.lines.count(NOT_RUNNING.strip()) == 2)
        self.assertEqual(follower.end(), 0)

    def test_followerEndsWithItsReader(self):
        reading, writing = os.pipe()
        process = subprocess.Popen([recorder.PROGRAM, "status", "--follow"], stdout=writing)
        os.close(writing)
        self.assertTrue(os.read(reading, 1000))
        os.close(reading)
        self.assertEqual(process.wait(SECONDS_TO_ANSWER), 0)

    def test_followerSurvivesAProgramThatHangs(self):
        follower = self.follow()
        recording = self.record()
        os.kill(recording.pid, signal.SIGSTOP)
        follower.wait_for(lambda line: line == SILENT.strip())
        seen = len(follower.lines)
        os.kill(recording.pid, signal.SIGCONT)
        follower.wait_for(lambda line: len(follower.lines) > seen and line == follower.lines[seen])
        recording.stop().saved()
        self.assertTrue(follower.lines[seen].startswith("Recording "), follower.lines)

    def test_programThatHangsIsNotWaitedForLong(self):
        recording = self.record()
        os.kill(recording.pid, signal.SIGSTOP)
        for command in "stop", "toggle", "start", "status":
            begin = time.monotonic()
            self.assert_fails(remote(command), SILENT)
            self.assertLess(time.monotonic() - begin, SECONDS_TO_GIVE_UP, command)
        os.kill(recording.pid, signal.SIGCONT)
        recording.stop().saved()

    def test_besideAProgramThatHangsAnotherIsStopped(self):
        hanging = self.record(folder=self.folder / "hanging")
        recording = self.record(folder=self.folder / "working")
        os.kill(hanging.pid, signal.SIGSTOP)
        result = remote("stop")
        self.assertEqual(result.errors, "Another Vantoro is running, but does not answer.\n")
        self.assertEqual(result.saved(), recording.finish().saved())
        os.kill(hanging.pid, signal.SIGCONT)
        hanging.stop().saved()

    def test_withoutABusARecordingRunsAndTheCommandsSayWhy(self):
        environment = dict(os.environ, DBUS_SESSION_BUS_ADDRESS="unix:path=/nowhere/at/all")
        recording = self.record(env=environment)
        for command in "start", "stop", "toggle", "status":
            self.assert_fails(remote(command, env=environment),
                              "There is no session bus, through which a running Vantoro could be reached.\n")
        recording.stop().saved()

    def test_busThatHangsIsNotWaitedForLong(self):
        for kind in hanging_bus.HANGING:
            bus = kind(self.folder.parent / kind.__name__)
            self.addCleanup(bus.close)
            environment = dict(os.environ, DBUS_SESSION_BUS_ADDRESS=bus.address)
            with self.subTest(bus=kind.__name__):
                begin = time.monotonic()
                self.assert_fails(remote("stop", env=environment),
                                  "The session bus does not answer, so a running Vantoro cannot be reached.\n")
                self.assertLess(time.monotonic() - begin, SECONDS_TO_GIVE_UP)

    def test_unreadOutputIsTold(self):
        recording = self.record()
        with open("/dev/full", "w", encoding="utf-8") as full:
            result = subprocess.run([recorder.PROGRAM, "stop", *ENGLISH], stdout=full, stderr=subprocess.PIPE, text=True,
                                    timeout=SECONDS_TO_ANSWER, check=False)
        path = recording.finish().saved()
        self.assertEqual((result.returncode, result.stderr),
                         (1, f"The recording was saved as {path}, which could not be printed.\n"))

    def test_othersStopItOverTheBus(self):
        recording = self.record()
        bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        names, = bus.call_sync("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "ListNames", None, None,
                               Gio.DBusCallFlags.NONE, -1).unpack()
        name, = [one for one in names if one.startswith("com.vantoro.app.recording.")]
        result = subprocess.run(["gdbus", "call", "--session", "--dest", name, "--object-path", "/com/vantoro/app",
                                 "--method", "com.vantoro.Control1.Stop", "{}"],
                                capture_output=True, text=True, check=True, timeout=SECONDS_TO_ANSWER)
        path = recording.finish().saved()
        self.assertEqual(result.stdout, f"('file://{path}', true, '')\n")


if __name__ == "__main__":
    main(Remote)

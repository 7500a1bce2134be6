#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The machine sleeps or shuts down during a recording: it waits for the sound, and the recording is saved."""

import os
import signal
import subprocess
import sys
import time

import dbus

sys.dont_write_bytecode = True

import recorder  # noqa: E402
import sound  # noqa: E402
from case import RecordingCase, main  # noqa: E402

LOGIN = "org.freedesktop.login1"
SECONDS_THAT_LOGIND_GRANTS = 5
SECONDS_TO_SAVE = 15


class Logind:
    """A stand-in for the login manager, on a separate system bus."""

    def __init__(self, folder):
        address = f"unix:path={folder}/system-bus"
        self.environment = dict(os.environ, DBUS_SYSTEM_BUS_ADDRESS=address)
        self._daemon = subprocess.Popen(
            ["dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address", f"--address={address}"],
            stdout=subprocess.PIPE, text=True)
        self._daemon.stdout.readline()
        self._mock = subprocess.Popen(
            [sys.executable, "-m", "dbusmock", "--system", "--template", "logind", "--logfile", os.devnull],
            env=self.environment)
        self._bus = dbus.bus.BusConnection(address)
        self._wait_until(lambda: self._bus.name_has_owner(LOGIN))
        self._manager = dbus.Interface(self._bus.get_object(LOGIN, "/org/freedesktop/login1"), f"{LOGIN}.Manager")
        self._control = dbus.Interface(self._manager, "org.freedesktop.DBus.Mock")

    def close(self):
        self._bus.close()
        for process in (self._mock, self._daemon):
            process.kill()
            process.wait()
        self._daemon.stdout.close()

    def delays(self, of="sleep"):
        """Who delays it, and why."""
        return [(str(who), str(why)) for what, who, why, mode, _, _ in self._manager.ListInhibitors()
                if (what, mode) == (of, "delay")]

    def wait_for_delays(self, count, of="sleep"):
        self._wait_until(lambda: len(self.delays(of)) == count)

    def say_that_sleep_begins(self):
        self._control.EmitSignal(f"{LOGIN}.Manager", "PrepareForSleep", "b", [True])

    def say_that_shutdown_begins(self):
        self._control.EmitSignal(f"{LOGIN}.Manager", "PrepareForShutdown", "b", [True])

    @staticmethod
    def _wait_until(condition):
        deadline = time.monotonic() + 20
        while not condition():
            if time.monotonic() > deadline:
                raise AssertionError("what was waited for did not happen on the bus")
            time.sleep(0.005)  # no change notification; poll


class Sleep(RecordingCase):
    def setUp(self):
        super().setUp()
        self.logind = Logind(self.folder.parent)
        self.addCleanup(self.logind.close)

    def test_sleepWaitsForTheSoundWhichIsSaved(self):
        with sound.tone(440):
            recording = recorder.Recording(self.folder, env=self.logind.environment)
            recording.wait_until_written()
            self.logind.wait_for_delays(1)
            self.assertEqual(self.logind.delays(), [("Vantoro", "Recording")])
            self.logind.say_that_sleep_begins()
            before = time.monotonic()
            self.logind.wait_for_delays(0)
            self.assertLess(time.monotonic() - before, SECONDS_THAT_LOGIND_GRANTS)
            result = recording.finish()
        self.assertEqual(result.errors,
                         "Recording was interrupted by sleep. The captured audio was saved successfully.\n")
        left, _ = sound.decoded(result.saved())
        self.assertGreater(sound.usual_amplitude(left, 440, 0.2, 0.9), 0.2)

    def test_shutdownWaitsForTheSoundWhichIsSaved(self):
        self.assert_shutdown_waits(lambda recording: recording.finish())

    def test_shutdownThatAlsoEndsTheSessionWaitsForTheSoundWhichIsSaved(self):
        self.assert_shutdown_waits(lambda recording: recording.stop(signal.SIGTERM))

    def assert_shutdown_waits(self, end):
        with sound.tone(440):
            recording = recorder.Recording(self.folder, env=self.logind.environment)
            recording.wait_until_written()
            self.logind.wait_for_delays(1, of="shutdown")
            self.assertEqual(self.logind.delays(of="shutdown"), [("Vantoro", "Recording")])
            self.logind.say_that_shutdown_begins()
            before = time.monotonic()
            result = end(recording)
            self.logind.wait_for_delays(0, of="shutdown")
            self.assertLess(time.monotonic() - before, SECONDS_TO_SAVE)
        left, _ = sound.decoded(result.saved())
        self.assertGreater(sound.usual_amplitude(left, 440, 0.2, 0.9), 0.2)

    def test_nothingPutsOffSleepOrShutdownOnceTheRecordingIsSaved(self):
        recording = recorder.Recording(self.folder, env=self.logind.environment)
        recording.wait_until_written()
        self.logind.wait_for_delays(1)
        self.logind.wait_for_delays(1, of="shutdown")
        recording.stop().saved()
        self.logind.wait_for_delays(0)
        self.logind.wait_for_delays(0, of="shutdown")


if __name__ == "__main__":
    main(Sleep)

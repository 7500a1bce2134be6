#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A message bus hangs, in one way or another: every command works without it, in time."""

import os
import signal
import subprocess
import sys
import time

sys.dont_write_bytecode = True

import hanging_bus  # noqa: E402
import recorder  # noqa: E402
from case import RecordingCase, main  # noqa: E402

# Two seconds for the buses together, and a margin for sound on a busy machine. Programs that wait for a bus as
# libraries do wait for at least 25 s, and again for each new call.
SECONDS_TO_BEGIN = 6
SECONDS_TO_END = 15
# As an ordinary user, a program asks bus services for real-time scheduling.
AS_ORDINARY_USER = ("prlimit", "--rtprio=0:0", "setpriv", "--bounding-set=-sys_nice", "--")
SYSTEM, SESSION = "DBUS_SYSTEM_BUS_ADDRESS", "DBUS_SESSION_BUS_ADDRESS"


class Bus(RecordingCase):
    def setUp(self):
        super().setUp()
        self.folder.mkdir()

    def environment(self, **kinds):
        environment = dict(os.environ)
        for variable, kind in kinds.items():
            bus = kind(self.folder.parent / f"{variable}-{kind.__name__}")
            self.addCleanup(bus.close)
            environment[variable] = bus.address
        return environment

    def assert_records(self, environment, *arguments):
        begin = time.monotonic()
        recording = recorder.Recording(self.folder, *arguments, prefix=AS_ORDINARY_USER, env=environment)
        recording.watch.wait_for(lambda _, name: name.endswith(".partial.mov"))
        self.assertLess(time.monotonic() - begin, SECONDS_TO_BEGIN, "begins")
        path = recording.finish(SECONDS_TO_END).saved()
        length = subprocess.run(["ffprobe", "-v", "error", "-show_entries", "format=duration", "-of", "csv=p=0", path],
                                check=True, capture_output=True, text=True).stdout
        self.assertGreater(float(length), 0.5)

    def assert_ends_on_a_signal(self, environment):
        recording = recorder.Recording(self.folder, prefix=AS_ORDINARY_USER, env=environment)
        recording.wait_until_written()
        begin = time.monotonic()
        recording.stop(signal.SIGTERM).saved()
        self.assertLess(time.monotonic() - begin, SECONDS_TO_BEGIN)

    def assert_recording_goes_on_without(self, **kinds):
        environment = self.environment(**kinds)
        self.assert_records(environment, "--seconds", 1)
        self.assert_records(environment, "--seconds", 1, "--no-microphone")
        self.assert_ends_on_a_signal(environment)

    def test_recordingGoesOnWithoutABusThatNeverReads(self):
        self.assert_recording_goes_on_without(**{SESSION: hanging_bus.DeafBus, SYSTEM: hanging_bus.DeafBus})

    def test_recordingGoesOnWithoutASessionBusThatNeverReads(self):
        self.assert_recording_goes_on_without(**{SESSION: hanging_bus.DeafBus})

    def test_recordingGoesOnWithoutASystemBusThatNeverReads(self):
        self.assert_recording_goes_on_without(**{SYSTEM: hanging_bus.DeafBus})

    def test_recordingGoesOnWithoutABusThatDoesNotGreet(self):
        self.assert_recording_goes_on_without(**{SESSION: hanging_bus.UngreetingBus,
                                                 SYSTEM: hanging_bus.UngreetingBus})

    def test_recordingGoesOnWithoutABusThatOnlyGreets(self):
        self.assert_recording_goes_on_without(**{SESSION: hanging_bus.GreetingBus, SYSTEM: hanging_bus.GreetingBus})

    def test_recordingGoesOnWithoutABusThatLetsNobodyConnect(self):
        self.assert_recording_goes_on_without(**{SESSION: hanging_bus.FullBus, SYSTEM: hanging_bus.FullBus})

    def test_recordingGoesOnWithoutABusThatIsGone(self):
        self.assert_recording_goes_on_without(**{SESSION: hanging_bus.AbandonedBus, SYSTEM: hanging_bus.AbandonedBus})

    def test_recordingGoesOnWithoutServicesThatHang(self):
        self.assert_recording_goes_on_without(**{SESSION: hanging_bus.BusOfHangingServices,
                                                 SYSTEM: hanging_bus.BusOfHangingServices})

    def test_recordingIsSavedWhenTheBusesFreezeMeanwhile(self):
        buses = [hanging_bus.WorkingBus(self.folder.parent / name) for name in ("session", "system")]
        for bus in buses:
            self.addCleanup(bus.close)
        environment = dict(os.environ, **{SESSION: buses[0].address, SYSTEM: buses[1].address})
        recording = recorder.Recording(self.folder, prefix=AS_ORDINARY_USER, env=environment)
        recording.wait_until_written()
        for bus in buses:
            bus.freeze()
        begin = time.monotonic()
        recording.stop(signal.SIGTERM).saved()
        self.assertLess(time.monotonic() - begin, SECONDS_TO_BEGIN)

    def test_otherCommandsGoOnWithoutABus(self):
        for kind in hanging_bus.ALL:
            environment = self.environment(**{SESSION: kind, SYSTEM: kind})
            for command, status in (("devices",), 0), (("recover", "--folder", self.folder), 0), (("doctor",), 1):
                with self.subTest(bus=kind.__name__, command=command[0]):
                    begin = time.monotonic()
                    result = recorder.run(*command, prefix=AS_ORDINARY_USER, env=environment)
                    self.assertEqual(result.status, status, result)
                    self.assertLess(time.monotonic() - begin, SECONDS_TO_BEGIN)

    def test_terminationIsHeededWhileTheBusesAreAsked(self):
        bus = hanging_bus.DeafBus(self.folder.parent / "bus")
        self.addCleanup(bus.close)
        environment = dict(os.environ, **{SESSION: bus.address, SYSTEM: bus.address})
        recording = recorder.Recording(self.folder, "--seconds", 600, env=environment)
        self.assertTrue(bus.is_connected_to.wait(SECONDS_TO_END))
        begin = time.monotonic()
        recording.stop(signal.SIGTERM)
        self.assertLess(time.monotonic() - begin, SECONDS_TO_BEGIN)


if __name__ == "__main__":
    main(Bus)

#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A message bus hangs, in one way or another: the window opens and quits in time."""

import os
import signal
import sys
import time

sys.dont_write_bytecode = True

from window_case import Program, WindowCase, main  # noqa: E402
import hanging_bus  # noqa: E402

# Two seconds for the buses together, one for each service that the window calls by itself, and a margin for a busy
# machine. Programs that wait for a bus as toolkits do wait for at least 25 s.
SECONDS_TO_BE_SHOWN = 6
SECONDS_TO_END = 6
SYSTEM, SESSION, ACCESSIBILITY = "DBUS_SYSTEM_BUS_ADDRESS", "DBUS_SESSION_BUS_ADDRESS", "AT_SPI_BUS_ADDRESS"
ALWAYS_ON = "QT_LINUX_ACCESSIBILITY_ALWAYS_ON"


class Bus(WindowCase):
    def setUp(self):
        super().setUp()
        self.environment = {name: value for name, value in os.environ.items() if not name.startswith("XDG_")}
        self.environment.update(HOME=str(self.home), XDG_RUNTIME_DIR=os.environ["XDG_RUNTIME_DIR"])

    def add_bus(self, kind, *variables):
        bus = kind(self.home / f"bus-{variables[0]}")
        self.addCleanup(bus.close)
        self.environment.update(dict.fromkeys(variables, bus.address))
        return bus

    def assert_window_comes_and_goes(self):
        begin = time.monotonic()
        program = Program(self.environment)
        self.addCleanup(program.kill)
        self.screen.main_window(program.pid)
        shown = time.monotonic()
        self.assertLess(shown - begin, SECONDS_TO_BE_SHOWN, "shown")
        program.send(signal.SIGTERM)
        self.assertEqual(program.finish(), 0, program.errors)
        self.assertLess(time.monotonic() - shown, SECONDS_TO_END, "ends")

    def assert_shown_without(self, kind):
        self.add_bus(kind, SESSION, SYSTEM)
        for always_on in ({}, {ALWAYS_ON: "1", "QT_ACCESSIBILITY": "1"}):
            self.environment.update(always_on)
            self.assert_window_comes_and_goes()

    def test_windowIsShownWithoutABusThatNeverReads(self):
        self.assert_shown_without(hanging_bus.DeafBus)

    def test_windowIsShownWithoutABusThatDoesNotGreet(self):
        self.assert_shown_without(hanging_bus.UngreetingBus)

    def test_windowIsShownWithoutABusThatOnlyGreets(self):
        self.assert_shown_without(hanging_bus.GreetingBus)

    def test_windowIsShownWithoutABusThatLetsNobodyConnect(self):
        self.assert_shown_without(hanging_bus.FullBus)

    def test_windowIsShownWithoutABusThatIsGone(self):
        self.assert_shown_without(hanging_bus.AbandonedBus)

    def test_windowIsShownWithoutServicesThatHang(self):
        self.assert_shown_without(hanging_bus.BusOfHangingServices)

    def test_windowIsShownWithoutAnAccessibilityBusThatHangs(self):
        for kind in hanging_bus.HANGING:
            with self.subTest(kind.__name__):
                bus = kind(self.home / f"accessibility-{kind.__name__}")
                self.addCleanup(bus.close)
                self.environment[ACCESSIBILITY] = bus.address
                self.assert_window_comes_and_goes()

    def test_windowIsShownWithoutAnAccessibilityBusThatTheServiceNamesAndThatHangs(self):
        session = self.add_bus(hanging_bus.WorkingBus, SESSION)
        hangs = hanging_bus.GreetingBus(self.home / "accessibility")
        self.addCleanup(hangs.close)
        session.add_accessibility(hangs.address)
        self.assert_window_comes_and_goes()
        self.assertTrue(hangs.is_connected_to.is_set())


if __name__ == "__main__":
    main(Bus)

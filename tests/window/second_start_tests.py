#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A second start brings the existing window to the front."""

import signal
import sys
import threading

from gi.repository import Gio, GLib

sys.dont_write_bytecode = True

from window_case import WindowCase, main  # noqa: E402
from events import wait_for  # noqa: E402


class FirstCall:
    """Watches the session bus for a call of this method."""

    def __init__(self, method):
        address = Gio.dbus_address_get_for_bus_sync(Gio.BusType.SESSION)
        client = (Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
                  | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION)
        self._bus = Gio.DBusConnection.new_for_address_sync(address, client)
        self._was_made = threading.Event()
        self._bus.add_filter(lambda bus, message, incoming: self._take(message, method))
        rules = GLib.Variant("(asu)", ([f"type='method_call',member='{method}'"], 0))
        self._bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus.Monitoring",
                            "BecomeMonitor", rules, None, Gio.DBusCallFlags.NONE, -1)

    def _take(self, message, method):
        if message.get_message_type() != Gio.DBusMessageType.METHOD_CALL or message.get_member() != method:
            return message
        self._was_made.set()
        return None  # a monitor must not answer

    def wait(self):
        wait_for(self._was_made.is_set, "the call")

    def close(self):
        self._bus.close_sync()


class SecondStart(WindowCase):
    def test_bringsTheFirstWindowToTheFrontAndEnds(self):
        window = self.open_window()
        self.screen.cover()
        self.assertEqual(self.start_program().finish(), 0)
        wait_for(lambda: self.screen.is_in_front(window.frame), "the first window in front")
        self.assertFalse(window.program.has_ended)

    def test_bringsAMinimisedWindowBack(self):
        window = self.open_window()
        self.screen.ask_to_close(window.frame)
        wait_for(lambda: self.screen.is_minimised(window.frame), "the window to be minimised")
        self.assertEqual(self.start_program().finish(), 0)
        wait_for(lambda: self.screen.is_in_front(window.frame), "the window to be back")

    def test_saysSoWhenTheFirstDoesNotAnswer(self):
        first = self.open_window().program
        first.send(signal.SIGSTOP)
        self.addCleanup(first.send, signal.SIGCONT)
        another = self.start_program()
        self.assertEqual(another.finish(), 1)
        self.assertIn("Vantoro is running already, and does not answer.\n", another.errors)

    def test_opensAWindowIfTheFirstEndsInsteadOfAnswering(self):
        first = self.open_window().program
        first.send(signal.SIGSTOP)
        call = FirstCall("Activate")
        self.addCleanup(call.close)
        another = self.start_program()
        call.wait()
        first.kill()
        self.screen.main_window(another.pid)
        self.assertFalse(another.has_ended)


if __name__ == "__main__":
    main(SecondStart)

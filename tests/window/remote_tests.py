#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Commands, as bound to a key, start and stop recordings of the program with its window."""

import contextlib
import json
import os
import signal
import subprocess
import sys
from pathlib import Path

sys.dont_write_bytecode = True

from gi.repository import Gio, GLib  # noqa: E402
from window_case import WindowCase, main  # noqa: E402
import recorder  # noqa: E402
import sound  # noqa: E402
from events import wait_for  # noqa: E402
from texts import ENGLISH  # noqa: E402

NAME, PLACE = "com.vantoro.app", "/com/vantoro/app"


BUS_WITH_SERVICES = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path={folder}/bus</listen>
  <auth>EXTERNAL</auth>
  <servicedir>{folder}</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""


def program_on(bus):
    """The process ID of the program with the window."""
    answer = bus.call_sync("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetConnectionUnixProcessID",
                           GLib.Variant("(s)", (NAME,)), None, Gio.DBusCallFlags.NONE, -1)
    return answer.unpack()[0]


class Remote(WindowCase):
    def setUp(self):
        super().setUp()
        self.environment = {name: value for name, value in os.environ.items() if not name.startswith("XDG_")}
        self.environment.update(HOME=str(self.home), XDG_RUNTIME_DIR=os.environ["XDG_RUNTIME_DIR"])
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION)

    def run_command(self, *words):
        return recorder.run(*words, env=self.environment)

    def status(self):
        return json.loads(self.run_command("status", "--json").output)

    def assert_succeeds(self, *words):
        result = self.run_command(*words)
        self.assertEqual((result.status, result.output, result.errors), (0, "", ""))

    def assert_starts_a_program(self, command):
        """Returns its process ID."""
        self.addCleanup(self.end_program)
        with self.until_written():
            self.assert_succeeds(command)
        program = program_on(self.bus)
        self.screen.main_window(program)
        self.assertEqual(self.status()["state"], "recording")
        return program

    def end_program(self):
        with contextlib.suppress(GLib.Error):
            program = os.pidfd_open(program_on(self.bus))
            signal.pidfd_send_signal(program, signal.SIGKILL)
            recorder.wait_until_readable(program, 30)
            os.close(program)

    def use_bus_with_services(self):
        """A bus that can start the program."""
        (self.home / "com.vantoro.app.service").write_text(f"[D-BUS Service]\nName={NAME}\nExec={recorder.PROGRAM}\n")
        (self.home / "bus.conf").write_text(BUS_WITH_SERVICES.format(folder=self.home))
        daemon = subprocess.Popen(["dbus-daemon", "--nofork", "--print-address", f"--config-file={self.home}/bus.conf"],
                                  env=self.environment, stdout=subprocess.PIPE, text=True)
        self.addCleanup(daemon.wait)
        self.addCleanup(daemon.kill)
        self.addCleanup(daemon.stdout.close)
        address = daemon.stdout.readline().strip()
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = address
        client = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        self.bus = Gio.DBusConnection.new_for_address_sync(address, client)
        self.bus.set_exit_on_close(False)

    def test_startWithoutAProgramOpensOneAndRecords(self):
        self.assert_starts_a_program("start")
        path = self.run_command("stop").saved()
        self.assertEqual(path, self.only_recording())
        result = self.run_command("status")
        self.assertEqual((result.status, result.output, result.errors), (0, f"Saved {path}\n", ""))
        told = self.status()
        self.assertEqual((told["state"], told["lastRecording"]), ("completed", str(path)))

    def test_startWithoutAProgramLetsTheBusOpenIt(self):
        self.use_bus_with_services()
        program = self.assert_starts_a_program("toggle")
        self.assertIn(b"DBUS_STARTER_ADDRESS", Path(f"/proc/{program}/environ").read_bytes())
        self.run_command("toggle").saved()

    def test_toggleStartsAndStopsInTheWindowBehindOthers(self):
        self.enterContext(sound.tone(440))
        self.enterContext(sound.tone(1000, "--into", sound.MICROPHONE))
        window = self.open_window()
        self.wait_until_ready(window)
        cover = self.screen.cover()
        with self.until_written():
            self.assert_succeeds("toggle")
        self.assertTrue(window.shows(ENGLISH["recording"]))
        path = self.run_command("toggle").saved()
        self.assertEqual(self.saved_recording(window), path)
        self.assert_holds(path, 440, 1000)
        self.assertTrue(self.screen.is_in_front(cover))

    def test_stopStopsWhatTheButtonStarted(self):
        window = self.open_window()
        self.assertEqual(self.status()["state"], "idle")
        result = self.run_command("stop")
        self.assertEqual((result.status, result.output, result.errors), (1, "", "Vantoro is not recording.\n"))
        self.record(window)
        path = self.run_command("stop").saved()
        self.assertEqual(self.saved_recording(window), path)

    def test_startThatFailsIsToldHereAndInTheWindow(self):
        window = self.open_window()
        self.wait_until_ready(window)
        self.screen.ask_to_close(window.frame)
        wait_for(lambda: self.screen.is_minimised(window.frame), "the window to be minimised")
        self.folder.rmdir()
        self.folder.write_text("where the folder should be\n")
        result = self.run_command("start")
        self.assertEqual((result.status, result.output), (1, ""))
        self.assertIn("Vantoro", result.errors)
        wait_for(lambda: self.screen.is_in_front(window.frame), "the window in front")
        self.assertTrue(window.shows(ENGLISH["needsAttention"]))
        self.assertEqual(self.status()["message"], result.errors.strip())

    def test_windowThatHangsIsNotWaitedForLong(self):
        program = self.open_window().program
        program.send(signal.SIGSTOP)
        self.addCleanup(program.send, signal.SIGCONT)
        for command in "start", "stop", "status":
            result = self.run_command(command)
            self.assertEqual((result.status, result.output, result.errors),
                             (1, "", "Vantoro is running, but does not answer.\n"))

    def test_interfaceIsDescribedOnTheBus(self):
        self.open_window()
        shown = subprocess.run(["gdbus", "introspect", "--session", "--dest", NAME, "--object-path", PLACE],
                               check=True, capture_output=True, text=True, timeout=60).stdout
        for line in ("interface com.vantoro.Control1", "Start(in  a{sv} options)", "out s recording",
                     "readonly s State = 'idle'", "readonly u Version = 2", "interface org.freedesktop.Application"):
            self.assertIn(line, shown)


if __name__ == "__main__":
    main(Remote)

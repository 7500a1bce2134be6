#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A real login manager sends the machine to sleep, of which only the last step is a file of the test. As root."""

import os
import subprocess
import sys
import time
from pathlib import Path

import dbus

sys.dont_write_bytecode = True
ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tests/recording"))

import recorder  # noqa: E402
import sound  # noqa: E402
from case import RecordingCase, main  # noqa: E402

# Unpacked: the package cannot be installed beside systemd.
ELOGIND = ROOT / "build/desktops/elogind"
LOGIN = "org.freedesktop.login1"
# Nothing is started unless the kernel's files are hidden.
HIDDEN_KERNEL = 'mount -t tmpfs none /run && mkdir /run/systemd && mount --bind "$1" /sys/power && exec "$2"'


class Elogind:
    def __init__(self, folder):
        self.state = folder / "power/state"
        self.state.parent.mkdir()
        self.state.write_text("freeze mem disk\n")
        (self.state.parent / "mem_sleep").write_text("[s2idle]\n")
        address = f"unix:path={folder}/system-bus"
        self.environment = dict(os.environ, DBUS_SYSTEM_BUS_ADDRESS=address)
        libraries = os.pathsep.join(str(path.parent) for path in ELOGIND.rglob("libelogind*.so*"))
        self._tools = dict(self.environment, LD_LIBRARY_PATH=libraries)
        self._bus_daemon = subprocess.Popen(
            ["dbus-daemon", f"--config-file={ROOT}/tools/session.d/dbus.conf", "--nofork", "--nopidfile", "--nosyslog",
             "--print-address", f"--address={address}"], stdout=subprocess.PIPE, text=True)
        self._bus_daemon.stdout.readline()
        self._daemon = subprocess.Popen(
            ["unshare", "--mount", "sh", "-c", HIDDEN_KERNEL, "sh", self.state.parent, ELOGIND / "lib/elogind/elogind"],
            env=self._tools)
        self._bus = dbus.bus.BusConnection(address)
        self.wait_until(lambda: self._bus.name_has_owner(LOGIN))
        self._manager = dbus.Interface(self._bus.get_object(LOGIN, "/org/freedesktop/login1"), f"{LOGIN}.Manager")

    def close(self):
        self._bus.close()
        for process in (self._daemon, self._bus_daemon):
            process.kill()
            process.wait()
        self._bus_daemon.stdout.close()

    def inhibitors(self, kind, of):
        return [str(who) for what, who, _, mode, _, _ in self._manager.ListInhibitors() if (what, mode) == (of, kind)]

    def delays(self):
        return self.inhibitors("delay", "sleep")

    def suspend(self):
        subprocess.run([ELOGIND / "bin/loginctl", "suspend"], env=self._tools, check=True, timeout=60)

    @property
    def has_slept(self):
        return self.state.read_text().strip() in ("freeze", "mem")

    @staticmethod
    def wait_until(condition):
        deadline = time.monotonic() + 20
        while not condition():
            if time.monotonic() > deadline:
                raise AssertionError("what was waited for did not happen")
            time.sleep(0.005)  # no change notification; poll


class Login(RecordingCase):
    def setUp(self):
        super().setUp()
        self.login = Elogind(self.folder.parent)
        self.addCleanup(self.login.close)

    def test_elogindsSuspendWaitsForTheSoundWhichIsSaved(self):
        with sound.tone(440):
            recording = recorder.Recording(self.folder, env=self.login.environment)
            recording.wait_until_written()
            self.login.wait_until(lambda: self.login.delays() == ["Vantoro"])
            self.assertFalse(self.login.has_slept)
            self.login.suspend()
            result = recording.finish()
        self.login.wait_until(lambda: self.login.has_slept)
        self.assertEqual(self.login.delays(), [])
        self.assertEqual(result.errors,
                         "Recording was interrupted by sleep. The captured audio was saved successfully.\n")
        left, _ = sound.decoded(result.saved())
        self.assertGreater(sound.usual_amplitude(left, 440, 0.2, 0.9), 0.2)

    def test_idleMachineStaysAwakeWhereThePortalsBackEndRefuses(self):
        """GTK's back end keeps no machine awake outside GNOME, which the portal tells only after it has agreed."""
        self.start_portal()
        recording = recorder.Recording(self.folder, env=self.login.environment)
        recording.wait_until_written()
        self.login.wait_until(lambda: self.login.inhibitors("block", "idle") == ["Vantoro"])
        recording.stop().saved()
        self.login.wait_until(lambda: self.login.inhibitors("block", "idle") == [])

    def start_portal(self):
        portal = subprocess.Popen(["/usr/libexec/xdg-desktop-portal"], env={**os.environ, "XDG_CURRENT_DESKTOP": "XFCE"})
        self.addCleanup(portal.wait)
        self.addCleanup(portal.kill)
        bus = dbus.SessionBus()
        self.login.wait_until(lambda: bus.name_has_owner("org.freedesktop.portal.Desktop"))


if __name__ == "__main__":
    main(Login)

# SPDX-License-Identifier: GPL-3.0-or-later
"""The private desktop: its folders, environment and daemons, and when it is ready."""

import os
import re
import select
import shutil
import signal
import socket
import subprocess
import time
from pathlib import Path

import processes

HERE = Path(__file__).resolve().parent
SECONDS_TO_START = 60.0
MICROPHONE = "vantoro-microphone"
DEFAULTS = {
    "default.audio.sink": "vantoro-output-1",
    "default.audio.source": MICROPHONE,
}
# Variables that lead a program to the outer desktop or its settings.
OUTER_DESKTOP = re.compile(
    r"PIPEWIRE_|PULSE_|WIREPLUMBER_|DBUS_|XDG_|GNOME_|KDE_|QT_QPA_|LISTEN_"
    r"|(DISPLAY|WAYLAND_DISPLAY|WAYLAND_SOCKET|XAUTHORITY|SESSION_MANAGER|DESKTOP_SESSION|NOTIFY_SOCKET)$"
)
KEPT = {"XDG_DATA_DIRS", "XDG_CONFIG_DIRS"}
METADATA_UPDATE = re.compile(r"""key:'([^']*)' value:'\{ ?"name": ?"([^"]*)" ?\}'""")


class StartError(Exception):
    pass


class Desktop:
    def __init__(self, folder, screen, long_cycles, mask):
        self._folder = folder
        self._screen = screen
        self._long_cycles = long_cycles
        self._mask = mask
        self._runtime = folder / "runtime"
        self._log_path = folder / "daemons.log"
        self._log = os.open(self._log_path, os.O_WRONLY | os.O_CREAT | os.O_APPEND | os.O_CLOEXEC, 0o600)
        self._deadline = time.monotonic() + SECONDS_TO_START
        self._daemons = {}
        self._environment = self._private_environment()

    def start(self, ending_signals):
        """Starts all daemons; returns the environment for programs in the desktop once it is ready."""
        self._ending_signals = ending_signals
        self._make_folders()
        self._start_bus()
        pipewire = self._start_daemon("pipewire", listen=self._runtime / "pipewire-0")
        self._start_daemon("wireplumber")
        self._start_daemon("pipewire-pulse", listen=self._runtime / "pulse" / "native")
        if self._screen:
            self._start_screen()
        self._wait_for_defaults()
        self._environment["VANTORO_SESSION_PIPEWIRE_PID"] = str(pipewire)
        return self._environment

    def _private_environment(self):
        environment = {
            name: value
            for name, value in os.environ.items()
            if name in KEPT or not OUTER_DESKTOP.match(name)
        }
        home = self._folder / "home"
        environment.update(
            HOME=str(home),
            XDG_RUNTIME_DIR=str(self._runtime),
            XDG_CONFIG_HOME=str(home / ".config"),
            XDG_STATE_HOME=str(home / ".local/state"),
            XDG_DATA_HOME=str(home / ".local/share"),
            XDG_CACHE_HOME=str(home / ".cache"),
            DBUS_SESSION_BUS_ADDRESS=f"unix:path={self._runtime}/bus",
            # Nothing in here may delay the sleep of the real machine.
            DBUS_SYSTEM_BUS_ADDRESS=f"unix:path={self._runtime}/no-system-bus",
            # Settings in a file of the private folder, without the usual settings service.
            GSETTINGS_BACKEND="keyfile",
        )
        return environment

    def _make_folders(self):
        for name in ("XDG_RUNTIME_DIR", "XDG_STATE_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"):
            Path(self._environment[name]).mkdir(mode=0o700, parents=True)
        (self._runtime / "pulse").mkdir(mode=0o700)
        configuration = Path(self._environment["XDG_CONFIG_HOME"])
        shutil.copytree(HERE / "config", configuration)
        if self._long_cycles:
            shutil.copy(HERE / "long-cycles.conf", configuration / "pipewire" / "pipewire.conf.d")
        # WirePlumber 0.5 uses a virtual microphone as the default if the user once chose it. Choosing it only after the
        # start may go unheard, or take the default away for a moment.
        state = Path(self._environment["XDG_STATE_HOME"]) / "wireplumber"
        state.mkdir()
        (state / "default-nodes").write_text(f"[default-nodes]\ndefault.configured.audio.source={MICROPHONE}\n")

    def _start_daemon(self, *command, listen=None):
        if shutil.which(command[0]) is None:
            raise StartError(f"{command[0]} is not installed (tools/install-dependencies --tests installs it)")
        listener = None
        if listen is not None:
            listener = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
            listener.bind(str(listen))
            listener.listen()
        pid = processes.spawn(command, self._environment, self._mask, listener=listener, log=self._log)
        if listener is not None:
            listener.close()
        self._daemons[os.pidfd_open(pid)] = command[0]
        return pid

    def _start_bus(self):
        ready, told = os.pipe()
        os.set_inheritable(told, True)
        self._start_daemon(
            "dbus-daemon", f"--config-file={HERE}/dbus.conf", "--nofork", "--nopidfile", "--nosyslog",
            f"--address={self._environment['DBUS_SESSION_BUS_ADDRESS']}", f"--print-address={told}",
        )
        os.close(told)
        self._read_line(ready, "the D-Bus session bus")
        os.close(ready)

    def _start_screen(self):
        # The server chooses a free display, since several sessions may start at once.
        ready, told = os.pipe()
        os.set_inheritable(told, True)
        self._start_daemon(
            "Xvfb", "-displayfd", str(told), "-screen", "0", "1280x1024x24", "-nolisten", "tcp", "-noreset"
        )
        os.close(told)
        self._environment["DISPLAY"] = ":" + self._read_line(ready, "the X server")
        os.close(ready)
        # Wait until it manages windows: earlier ones would stay unmanaged.
        fifo = self._runtime / "window-manager-ready"
        os.mkfifo(fifo)
        ready = os.open(fifo, os.O_RDWR | os.O_NONBLOCK | os.O_CLOEXEC)
        self._start_daemon("openbox", "--sm-disable", "--startup", f"sh -c 'echo ready > {fifo}'")
        self._read_line(ready, "the window manager")
        os.close(ready)

    def _wait_for_defaults(self):
        """Ready means that the session manager has found the devices and set the defaults."""
        missing = dict(DEFAULTS)
        environment = dict(self._environment, LC_ALL="C")
        with subprocess.Popen(
            ["pw-metadata", "-m"], env=environment, stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE, stderr=self._log, bufsize=0,
        ) as monitor:
            try:
                while missing:
                    line = self._read_line(monitor.stdout.fileno(), " and ".join(missing))
                    for key, name in METADATA_UPDATE.findall(line):
                        if missing.get(key) == name:
                            del missing[key]
            finally:
                monitor.kill()

    def _read_line(self, descriptor, what):
        """Reads a line from a daemon; an error if the deadline passes, a daemon dies or the session is told to end."""
        line = b""
        while not line.endswith(b"\n"):
            remaining = self._deadline - time.monotonic()
            if remaining <= 0:
                raise self._start_error(f"waited {SECONDS_TO_START:.0f} s for {what}")
            # Signals stay pending during a read, so it wakes up to check for them.
            readable, _, _ = select.select([descriptor, *self._daemons], [], [], min(remaining, 0.2))
            if descriptor in readable:
                byte = os.read(descriptor, 1)
                if not byte:
                    raise self._start_error(f"no answer from {what}")
                line += byte
            elif readable:
                raise self._start_error(f"{self._daemons[readable[0]]} ended while it was starting")
            self._check_signals()
        return line.decode(errors="replace").strip()

    def _check_signals(self):
        if signal.sigpending() & self._ending_signals:
            raise StartError("asked to end before the desktop was ready")

    def _start_error(self, reason):
        log = self._log_path.read_text(errors="replace").rstrip()
        return StartError(f"the private desktop did not start: {reason}\n{log}")

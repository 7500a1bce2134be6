# SPDX-License-Identifier: GPL-3.0-or-later
"""Message buses that accept connections and then hang, each in its own way."""

import contextlib
import os
import select
import signal
import socket
import struct
import subprocess
import sys
import threading
import time

import dbus

GUID = "0123456789abcdef0123456789abcdef"


class HangingBus:
    """Accepts every connection and goes as far as `answer` does; by itself it does not even read."""

    def __init__(self, path):
        self.address = f"unix:path={path}"
        self._listener = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self._listener.bind(str(path))
        self._listener.listen(16)
        self.is_connected_to = threading.Event()
        self._end, self._ended = os.pipe()
        self._thread = threading.Thread(target=self._serve)
        self._thread.start()

    def close(self):
        os.close(self._ended)
        self._thread.join()
        os.close(self._end)
        self._listener.close()

    def answer(self, client):
        """Handles input from this client; false if no more is to be read from it."""
        return False

    def _serve(self):
        clients = []
        silent = []
        while True:
            ready, _, _ = select.select([self._end, self._listener, *clients], [], [])
            if self._end in ready:
                break
            if self._listener in ready:
                clients.append(Client(self._listener.accept()[0]))
                self.is_connected_to.set()
            for client in [one for one in ready if one in clients]:
                if not self.answer(client):
                    clients.remove(client)
                    silent.append(client)
        for client in clients + silent:
            client.close()


class Client:
    """A connected client."""

    def __init__(self, connection):
        self._connection = connection
        self._waiting = b""
        self.is_in = False

    def fileno(self):
        return self._connection.fileno()

    def close(self):
        self._connection.close()

    def read(self):
        """False when the client has disconnected."""
        received = self._connection.recv(65536)
        self._waiting += received
        return received != b""

    def take(self, end):
        """Takes input up to there, if it has arrived."""
        taken, found, rest = self._waiting.partition(end)
        if not found:
            return None
        self._waiting = rest
        return taken

    @property
    def waiting(self):
        return self._waiting

    def send(self, answer):
        with contextlib.suppress(BrokenPipeError):
            self._connection.sendall(answer)


class DeafBus(HangingBus):
    """Never reads."""


class UngreetingBus(HangingBus):
    """Lets programs authenticate, and does not answer their Hello."""

    def answer(self, client):
        if not client.read():
            return False
        while not client.is_in and (line := client.take(b"\r\n")) is not None:
            self._authenticate(client, line.lstrip(b"\0").decode())
        return True

    @staticmethod
    def _authenticate(client, line):
        words = line.split()
        if words == ["AUTH", "EXTERNAL"]:
            client.send(b"DATA\r\n")
        elif words[:1] == ["DATA"] or words[:2] == ["AUTH", "EXTERNAL"]:
            client.send(f"OK {GUID}\r\n".encode())
        elif words[:1] == ["AUTH"]:
            client.send(b"REJECTED EXTERNAL\r\n")
        elif words == ["NEGOTIATE_UNIX_FD"]:
            client.send(b"AGREE_UNIX_FD\r\n")
        elif words == ["BEGIN"]:
            client.is_in = True


class GreetingBus(UngreetingBus):
    """Answers Hello, and nothing else."""

    def answer(self, client):
        goes_on = super().answer(client)
        if client.is_in and len(client.waiting) >= 16:
            client.send(greeting(client.waiting))
            return False
        return goes_on


def greeting(call):
    """The reply to a call that requests a bus name."""
    order = "<" if call[:1] == b"l" else ">"
    serial, = struct.unpack_from(order + "I", call, 8)
    name = b":1.1"
    body = struct.pack("<I", len(name)) + name + b"\0"
    fields = struct.pack("<BBBBI", 5, 1, ord("u"), 0, serial)
    fields += text_field(6, name) + text_field(7, b"org.freedesktop.DBus")
    fields += struct.pack("<BBBBB", 8, 1, ord("g"), 0, 1) + b"s\0"
    header = struct.pack("<BBBBIII", ord("l"), 2, 1, 1, len(body), 1, len(fields)) + fields
    return aligned(header) + body


def text_field(code, text):
    return aligned(struct.pack("<BBBBI", code, 1, ord("s"), 0, len(text)) + text + b"\0")


def aligned(data):
    return data + b"\0" * (-len(data) % 8)


class FullBus:
    """Its queue of waiting connections is full: the next client blocks in connect."""

    def __init__(self, path):
        self.address = f"unix:path={path}"
        self._listener = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self._listener.bind(str(path))
        self._listener.listen(0)
        self._waiting = []
        with contextlib.suppress(BlockingIOError):
            while True:
                self._waiting.append(socket.socket(socket.AF_UNIX, socket.SOCK_STREAM))
                self._waiting[-1].setblocking(False)
                self._waiting[-1].connect(str(path))

    def close(self):
        for one in [*self._waiting, self._listener]:
            one.close()


class AbandonedBus:
    """Its socket exists, and nobody listens."""

    def __init__(self, path):
        self.address = f"unix:path={path}"
        abandoned = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        abandoned.bind(str(path))
        abandoned.close()

    def close(self):
        pass


class WorkingBus:
    """A working bus. An added service answers no call."""

    def __init__(self, path):
        self.address = f"unix:path={path}"
        self._daemon = subprocess.Popen(
            ["dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address", f"--address={self.address}"],
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self._daemon.stdout.readline()
        self._mock = None
        # The bus has no event loop: nobody reads what it receives.
        self._services = dbus.bus.BusConnection(self.address)

    def add_services(self, *names):
        for name in names:
            self._services.request_name(name)

    def freeze(self):
        """Stops all work; connections stay open."""
        self._daemon.send_signal(signal.SIGSTOP)

    def add_accessibility(self, address):
        """Adds the service that announces the accessibility bus, and that it is wanted."""
        self._mock = subprocess.Popen(
            [sys.executable, "-m", "dbusmock", "--session", "--logfile", os.devnull, "org.a11y.Bus", "/org/a11y/bus",
             "org.a11y.Bus"], env=dict(os.environ, DBUS_SESSION_BUS_ADDRESS=self.address))
        deadline = time.monotonic() + 20
        while not self._services.name_has_owner("org.a11y.Bus"):
            if time.monotonic() > deadline:
                raise AssertionError("the service did not come to the bus")
            time.sleep(0.005)
        mock = dbus.Interface(self._services.get_object("org.a11y.Bus", "/org/a11y/bus"),
                              "org.freedesktop.DBus.Mock")
        mock.AddMethod("org.a11y.Bus", "GetAddress", "", "s", f"ret = {address!r}")
        mock.AddProperties("org.a11y.Status", {"IsEnabled": True, "ScreenReaderEnabled": True})

    def close(self):
        if self._mock:
            self._mock.kill()
            self._mock.wait()
        self._services.close()
        self._daemon.kill()
        self._daemon.wait()
        self._daemon.stdout.close()


class BusOfHangingServices(WorkingBus):
    """The bus answers, its services do not."""

    NAMES = ("org.freedesktop.login1", "org.freedesktop.RealtimeKit1", "net.hadess.PowerProfiles",
             "org.freedesktop.UPower.PowerProfiles", "org.freedesktop.portal.Desktop",
             "org.freedesktop.impl.portal.desktop.gtk", "org.freedesktop.impl.portal.PermissionStore",
             "org.freedesktop.FileManager1", "org.a11y.Bus", "org.kde.StatusNotifierWatcher",
             "com.canonical.AppMenu.Registrar", "org.freedesktop.Notifications", "ca.desrt.dconf")

    def __init__(self, path):
        super().__init__(path)
        self.add_services(*self.NAMES)


HANGING = (DeafBus, UngreetingBus, GreetingBus, FullBus)
ALL = (*HANGING, AbandonedBus, BusOfHangingServices)

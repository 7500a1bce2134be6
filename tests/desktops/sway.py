# SPDX-License-Identifier: GPL-3.0-or-later
"""A Wayland compositor whose only monitor is a window on the X screen, where mouse and keyboard are."""

import json
import os
import re
import subprocess
from pathlib import Path

from events import wait_for

OUTPUT = "X11-1"
CONFIGURATION = f"output {OUTPUT} resolution 1000x960\nxwayland disable\n"
SOCKET = re.compile(r"wayland-\d+$")
# It refuses to run as root, which it takes for a set-user-ID program's rights.
NOT_AS_ROOT = () if os.getuid() else ("unshare", "--user", "--map-user=1000", "--map-group=1000")


class Sway:
    def __init__(self, case):
        self._screen = case.screen
        configuration = case.home / "sway.conf"
        configuration.write_text(CONFIGURATION)
        runtime = Path(os.environ["XDG_RUNTIME_DIR"])
        case.start_part(*NOT_AS_ROOT, "sway", "--config", configuration, WLR_BACKENDS="x11", WLR_RENDERER="pixman",
                        XDG_CURRENT_DESKTOP="sway")
        self._socket = wait_for(lambda: next(runtime.glob("sway-ipc.*.sock"), None), "the compositor")
        wait_for(lambda: any(node["type"] == "workspace" for node in self._nodes()), "the compositor's workspace")
        display, = (path.name for path in runtime.iterdir() if SOCKET.match(path.name))
        self.environment = {"XDG_CURRENT_DESKTOP": "sway", "XDG_SESSION_TYPE": "wayland", "WAYLAND_DISPLAY": display,
                            "QT_QPA_PLATFORM": "wayland", "GDK_BACKEND": "wayland", "SWAYSOCK": str(self._socket)}

    def command(self, *words):
        return subprocess.run(["swaymsg", "--socket", self._socket, "--raw", *words], check=True, capture_output=True,
                              text=True).stdout

    def window(self, pid):
        """The program's window as the compositor has it, or None."""
        return next((node for node in self._nodes() if node.get("pid") == pid), None)

    def is_in_front(self, pid):
        window = self.window(pid)
        return window is not None and window["focused"] and window["visible"]

    def ask_to_close(self, pid):
        self.command(f"[con_id={self.window(pid)['id']}]", "kill")

    def scale(self, factor):
        self.command("output", OUTPUT, "scale", str(factor))

    def on_screen(self, pid, place):
        """Where the X screen shows a part of the program's window: left, top, right, bottom."""
        output, = json.loads(self.command("-t", "get_outputs"))
        window = self.window(pid)
        corner = self._screen.origin(self._screen.windows()[0])
        left, top, width, height = place
        edges = (left, top, left + width, top + height)
        within = (window["rect"][axis] + window["window_rect"][axis] for axis in "xyxy")
        return tuple(round(corner[index % 2] + output["scale"] * (offset + edge))
                     for index, (offset, edge) in enumerate(zip(within, edges)))

    def _nodes(self):
        try:
            pending = [json.loads(self.command("-t", "get_tree"))]
        except subprocess.CalledProcessError:
            return  # it is still starting
        while pending:
            node = pending.pop()
            pending += node["nodes"] + node["floating_nodes"]
            yield node


class WaylandScreen:
    """What `Window` asks of a screen, with process IDs for windows."""

    def __init__(self, sway):
        self._sway = sway

    def main_window(self, pid):
        wait_for(lambda: self._sway.window(pid), "the program's window")
        return pid

    def is_managed(self, pid):
        return self._sway.window(pid) is not None

    def is_in_front(self, pid):
        return self._sway.is_in_front(pid)

    def ask_to_close(self, pid):
        self._sway.ask_to_close(pid)

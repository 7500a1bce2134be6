# SPDX-License-Identifier: GPL-3.0-or-later
"""The screen as the window manager and the user see it: windows, mouse, keyboard."""

import subprocess

from Xlib import X, Xatom
from Xlib.display import Display
from Xlib.error import XError
from Xlib.protocol.event import ClientMessage

from events import wait_for


class Screen:
    def __init__(self):
        self._display = Display()
        self._root = self._display.screen().root

    def close(self):
        self._display.close()

    def main_window(self, pid):
        """The window of a program, once it is managed; no transient window."""
        def found():
            return next((window for window in self.windows() if self._is_main(window, pid)), None)
        return wait_for(found, "the program's window")

    def windows(self):
        """Those that the window manager has, the oldest first."""
        return [self._window(number) for number in self._values(self._root, "_NET_CLIENT_LIST", Xatom.WINDOW)]

    def is_managed(self, window):
        """Whether the window manager, and so a task list, has it: shown or minimised."""
        return window in self.windows()

    def is_minimised(self, window):
        return self.is_managed(window) and self._atom("_NET_WM_STATE_HIDDEN") in self._values(
            window, "_NET_WM_STATE", Xatom.ATOM)

    def is_in_front(self, window):
        """Whether it, or a transient window of it, is on top of all but panels and has the keyboard focus."""
        stack = self._values(self._root, "_NET_CLIENT_LIST_STACKING", Xatom.WINDOW)
        top = [number for number in stack if not self._is_panel(self._window(number))][-1:]
        if not top or top != self._active():
            return False
        owner = self._values(self._window(top[0]), "WM_TRANSIENT_FOR", Xatom.WINDOW)
        return window.id in top + owner

    def has_a_dialog_in_front(self, window):
        """Whether a transient window of it has the keyboard focus."""
        return self.is_in_front(window) and self._active() != [window.id]

    def origin(self, window):
        """Its upper left corner."""
        translated = window.translate_coords(self._root, 0, 0)
        return -translated.x, -translated.y

    @property
    def root(self):
        """The whole screen."""
        return self._root

    def size(self, window):
        """Without its frame."""
        geometry = window.get_geometry()
        return geometry.width, geometry.height

    def resize(self, window, width, height):
        """As its user does with the mouse."""
        window.configure(width=width, height=height)
        self._display.flush()

    def brightness(self, window, left, top):
        """Of one of its pixels, from 0 to 1; it must be in front."""
        return sum(window.get_image(left, top, 1, 1, X.ZPixmap, 0xffffffff).data[:3]) / (3 * 255)

    def ask_to_close(self, window):
        """As the close button in the title bar does."""
        self._ask(window, "_NET_CLOSE_WINDOW", [X.CurrentTime, 2, 0, 0, 0])

    def pick(self, window):
        """As a click in a task list does."""
        self._ask(window, "_NET_ACTIVE_WINDOW", [2, X.CurrentTime, 0, 0, 0])

    def cover(self):
        """Covers all windows with another program's window."""
        size = self._root.get_geometry()
        cover = self._root.create_window(0, 0, size.width, size.height, 0, X.CopyFromParent)
        cover.set_wm_name("Another window")
        cover.map()
        self._display.flush()
        wait_for(lambda: self.is_in_front(cover), "another window in front")
        return cover

    def _active(self):
        return self._values(self._root, "_NET_ACTIVE_WINDOW", Xatom.WINDOW)

    def _window(self, number):
        return self._display.create_resource_object("window", number)

    def _is_panel(self, window):
        return self._atom("_NET_WM_WINDOW_TYPE_DOCK") in self._values(window, "_NET_WM_WINDOW_TYPE", Xatom.ATOM)

    def _is_main(self, window, pid):
        return (self._values(window, "_NET_WM_PID", Xatom.CARDINAL) == [pid]
                and not self._values(window, "WM_TRANSIENT_FOR", Xatom.WINDOW))

    def _atom(self, name):
        return self._display.intern_atom(name)

    def _values(self, window, name, kind):
        try:
            found = window.get_full_property(self._atom(name), kind)
        except XError:
            return []  # the window has just vanished
        return list(found.value) if found else []

    def _ask(self, window, name, data):
        message = ClientMessage(window=window, client_type=self._atom(name), data=(32, data))
        self._root.send_event(message, event_mask=X.SubstructureRedirectMask | X.SubstructureNotifyMask)
        self._display.flush()


def press_keys(*keys):
    subprocess.run(["xdotool", "key", *keys], check=True)


def click(thing):
    left, top, width, height = thing.place
    subprocess.run(["xdotool", "mousemove", str(left + width // 2), str(top + height // 2), "click", "1"], check=True)

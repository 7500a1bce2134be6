# SPDX-License-Identifier: GPL-3.0-or-later
"""The window as a screen reader sees and operates it."""

import re
import subprocess

import gi

gi.require_version("Atspi", "2.0")

from gi.repository import Atspi, Gio, GLib  # noqa: E402

from events import wait_for  # noqa: E402

BUS_LAUNCHER = "/usr/libexec/at-spi-bus-launcher"
# Programs on a busy machine answer late.
MILLISECONDS_TO_ANSWER = 20000


class ScreenReader:
    """Turns the desktop's accessibility on, as the first screen reader does, and listens."""

    def __init__(self):
        self._bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        self._launcher = None
        if not self._is_bus_there():
            self._launcher = subprocess.Popen([BUS_LAUNCHER, "--launch-immediately"],
                                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            wait_for(self._is_bus_there, "the bus of accessibility")
        self._bus.call_sync(
            "org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties", "Set",
            GLib.Variant("(ssv)", ("org.a11y.Status", "IsEnabled", GLib.Variant("b", True))), None, 0, -1)
        Atspi.init()
        Atspi.set_timeout(MILLISECONDS_TO_ANSWER, MILLISECONDS_TO_ANSWER)
        # Disable the cache: queries return the current state.
        Atspi.get_desktop(0).set_cache_mask(Atspi.Cache.NONE)
        # Events only trigger another look.
        self._listener = Atspi.EventListener.new(lambda _event: None)
        for event in ("object:property-change", "object:state-changed", "object:children-changed", "window"):
            self._listener.register(event)

    def application(self, pid):
        """The program with this process ID, once it has registered."""
        def found():
            desktop = Atspi.get_desktop(0)
            for index in range(desktop.get_child_count()):
                child = desktop.get_child_at_index(index)
                try:
                    if child and child.get_process_id() == pid:
                        return child
                except GLib.Error:
                    pass  # it has just ended
            return None
        return Application(wait_for(found, "the program to be accessible"))

    def close(self):
        if self._launcher:
            self._launcher.terminate()
            self._launcher.wait()

    def _is_bus_there(self):
        owned, = self._bus.call_sync(
            "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner",
            GLib.Variant("(s)", ("org.a11y.Bus",)), None, 0, -1)
        return owned


class Application:
    """The user interface of one program. Elements are found by the names that a screen reader speaks."""

    def __init__(self, accessible):
        self._accessible = accessible

    def things(self):
        pending = [self._accessible]
        while pending:
            accessible = pending.pop()
            try:
                children = [accessible.get_child_at_index(index) for index in range(accessible.get_child_count())]
            except GLib.Error:
                continue  # it has just vanished
            pending += [child for child in reversed(children) if child]
            yield Thing(accessible)

    def find(self, name, condition):
        """The first element of this name, or matching this pattern, that meets the condition; or None."""
        for thing in self.things():
            try:
                found = name.fullmatch(thing.name) if isinstance(name, re.Pattern) else thing.name == name
                if found and condition(thing):
                    return thing
            except GLib.Error:
                continue  # it has just vanished
        return None

    def control(self, name):
        """An element that can be pressed, switched or moved, and takes the keyboard focus."""
        return self._awaited(name, lambda thing: thing.is_a_control, "control")

    def labelled(self, label):
        """The element that the label belongs to: a picker's own name is its selection."""
        def found():
            for thing in self.things():
                if thing.label == label:
                    return thing
            return None
        return wait_for(found, f"what is labelled {label!r}")

    def meter(self, name):
        return self._awaited(name, lambda thing: thing.is_showing and thing.has_value and not thing.is_a_control,
                             "meter")

    @property
    def main_window(self):
        """The first of its windows."""
        return Thing(self._accessible).children[0]

    def menu_item(self, name):
        return self._awaited(name, lambda thing: thing.role == Atspi.Role.MENU_ITEM, "menu item")

    def text(self, name):
        """A visible element with exactly this text."""
        return self._awaited(name, lambda thing: thing.is_showing, "text")

    def shows(self, name):
        return self.find(name, lambda thing: thing.is_showing) is not None

    def _awaited(self, name, condition, kind):
        return wait_for(lambda: self.find(name, condition), f"the {kind} {name!r}")


class Thing:
    """An element in a window."""

    def __init__(self, accessible):
        self._accessible = accessible

    @property
    def name(self):
        return self._accessible.get_name()

    @property
    def description(self):
        return self._accessible.get_description()

    @property
    def role(self):
        return self._accessible.get_role()

    @property
    def label(self):
        """The name of the element's label."""
        try:
            for relation in self._accessible.get_relation_set():
                if relation.get_relation_type() == Atspi.RelationType.LABELLED_BY:
                    return relation.get_target(0).get_name()
        except GLib.Error:
            pass  # it has just vanished
        return None

    @property
    def children(self):
        found = [self._accessible.get_child_at_index(index) for index in range(self._accessible.get_child_count())]
        return [Thing(child) for child in found if child]

    def choice(self, name):
        """A picker's option of this name, or None."""
        return next((choice for part in self.children for choice in part.children if choice.name == name), None)

    def is_(self, state):
        return self._accessible.get_state_set().contains(state)

    @property
    def is_a_control(self):
        return self.is_(Atspi.StateType.FOCUSABLE) and self.is_showing

    @property
    def is_a_choice(self):
        return self.role == Atspi.Role.LIST_ITEM

    @property
    def is_showing(self):
        return self.is_(Atspi.StateType.SHOWING)

    @property
    def is_selected(self):
        return self.is_(Atspi.StateType.SELECTED)

    @property
    def is_checked(self):
        return self.is_(Atspi.StateType.CHECKED)

    @property
    def is_enabled(self):
        return self.is_(Atspi.StateType.ENABLED)

    @property
    def has_focus(self):
        return self.is_(Atspi.StateType.FOCUSED)

    @property
    def has_value(self):
        return "Value" in self._accessible.get_interfaces()

    @property
    def value(self):
        """From 0 (minimum) to 1 (maximum)."""
        return Atspi.Value.get_current_value(self._accessible) / Atspi.Value.get_maximum_value(self._accessible)

    def set_value(self, part):
        Atspi.Value.set_current_value(self._accessible, part * Atspi.Value.get_maximum_value(self._accessible))

    def act(self, name):
        """Performs one of its actions."""
        count = Atspi.Action.get_n_actions(self._accessible)
        names = [Atspi.Action.get_action_name(self._accessible, index) for index in range(count)]
        if name not in names:
            raise AssertionError(f"{self.name!r} can {names}, but not {name}")
        Atspi.Action.do_action(self._accessible, names.index(name))

    def press(self):
        self.act("Press")

    @property
    def place(self):
        """Left, top, width and height on the screen."""
        extents = Atspi.Component.get_extents(self._accessible, Atspi.CoordType.SCREEN)
        return extents.x, extents.y, extents.width, extents.height

#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Both meters in the panels of desktops that take long to install and to start."""

import os
import subprocess
import sys

sys.dont_write_bytecode = True

import picture  # noqa: E402
from desktop_case import MOST_CHANGE, click_at  # noqa: E402
from events import wait_for  # noqa: E402
from panels import PanelCase, WATCHER  # noqa: E402
from screen import press_keys  # noqa: E402
from sound import ROOT  # noqa: E402
from window_case import main  # noqa: E402

KDE = {"XDG_CURRENT_DESKTOP": "KDE", "KDE_FULL_SESSION": "true", "KDE_SESSION_VERSION": "5"}
GNOME = {"XDG_CURRENT_DESKTOP": "GNOME", "XDG_SESSION_TYPE": "x11"}
EXTENSION = "ubuntu-appindicators@ubuntu.com"


class LargeDesktops(PanelCase):
    def test_plasmaShowsBothMeters(self):
        self.start_plasma("default")
        self.assert_shows_both_meters(**KDE)

    def test_darkPlasmaShowsBothMeters(self):
        """Dark panels above light windows."""
        self.start_plasma("breeze-dark")
        self.assert_shows_both_meters(**KDE)

    def test_gnomeShowsBothMetersWithTheExtension(self):
        self.start_system_bus()
        self.start_part("/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "logind")
        subprocess.run(["gsettings", "set", "org.gnome.shell", "enabled-extensions", f"['{EXTENSION}']"], check=True)
        self.start_part("gnome-shell", "--x11", "--replace", "--sm-disable", **GNOME)
        self.owned(WATCHER)
        self.wait_for_front = self.leave_overview_for
        self.choose = self.choose_from_menu
        self.assert_shows_both_meters(**GNOME)

    def leave_overview_for(self, frame):
        """GNOME starts with an overview of all windows."""
        def is_in_front():
            subprocess.run(["gdbus", "call", "--session", "--dest", "org.gnome.Shell", "--object-path",
                            "/org/gnome/Shell", "--method", "org.freedesktop.DBus.Properties.Set", "org.gnome.Shell",
                            "OverviewActive", "<false>"], check=True, capture_output=True, timeout=60)
            return self.screen.is_in_front(frame)

        wait_for(is_in_front, "the window in front")

    def choose_from_menu(self, place):
        """A single click opens the menu there."""
        before = picture.of_screen()
        click_at(place)
        wait_for(lambda: len(before.differences(picture.of_screen())) > 4 * MOST_CHANGE, "the menu")
        self.save(picture.of_screen(), "menu")
        press_keys("Down", "Return")

    def start_plasma(self, theme):
        settings = self.home / "plasma"
        settings.mkdir()
        (settings / "plasmarc").write_text(f"[Theme]\nname={theme}\n")
        environment = {**KDE, "XDG_CONFIG_HOME": str(settings)}
        self.start_part("kwin_x11", "--replace", **environment)
        self.start_part("kded5", **environment)
        self.start_part("plasmashell", "--no-respawn", **environment)
        self.owned(WATCHER)

    def start_system_bus(self):
        self.start_part("dbus-daemon", f"--config-file={ROOT}/tools/session.d/dbus.conf", "--nofork", "--nopidfile",
                        "--nosyslog", f"--address={os.environ['DBUS_SYSTEM_BUS_ADDRESS']}")


if __name__ == "__main__":
    main(LargeDesktops)

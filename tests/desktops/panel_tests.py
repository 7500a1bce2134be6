#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Both meters in the panels of desktops, as these come."""

import glob
import sys

sys.dont_write_bytecode = True

from panels import PanelCase, WATCHER  # noqa: E402
from window_case import main  # noqa: E402


class Panels(PanelCase):
    def test_xfceShowsBothMeters(self):
        settings, = glob.glob("/usr/lib/*/xfce4/xfconf/xfconfd")
        self.start_part(settings)
        self.owned("org.xfce.Xfconf")
        self.start_part("xfce4-panel", XDG_CURRENT_DESKTOP="XFCE")
        self.owned(WATCHER)
        self.assert_shows_both_meters(XDG_CURRENT_DESKTOP="XFCE")

    def test_lxqtShowsBothMeters(self):
        # Its settings are beside those of other desktops.
        self.start_part("lxqt-panel", XDG_CURRENT_DESKTOP="LXQt", XDG_CONFIG_DIRS="/etc/xdg:/usr/share")
        self.owned(WATCHER)
        self.assert_shows_both_meters(XDG_CURRENT_DESKTOP="LXQt")


if __name__ == "__main__":
    main(Panels)

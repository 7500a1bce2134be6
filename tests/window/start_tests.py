#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""An idle window has not yet loaded what it does not need."""

import sys

sys.dont_write_bytecode = True

from pathlib import Path  # noqa: E402

from window_case import WindowCase, main  # noqa: E402
from texts import ENGLISH  # noqa: E402

# The libraries for media files, for update checks and for image formats that the program's own images do not need.
NEEDED_LATER = ("libavcodec", "libavformat", "libQt6Network", "/imageformats/")


class Start(WindowCase):
    def loaded(self, window):
        maps = Path(f"/proc/{window.program.pid}/maps").read_text()
        return [name for name in NEEDED_LATER if name in maps]

    def test_nothingIsLoadedThatOnlyARecordingNeeds(self):
        window = self.open_window()
        window.control(ENGLISH["startRecording"])
        self.assertEqual(self.loaded(window), [])
        self.record(window)
        self.assertIn("libavcodec", self.loaded(window))


if __name__ == "__main__":
    main(Start)

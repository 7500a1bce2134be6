# SPDX-License-Identifier: GPL-3.0-or-later
"""The base of the test cases: the parts of a desktop, and what a user sees of the program in them."""

import contextlib
import os
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "window"))

from window_case import WindowCase  # noqa: E402  it also finds the tests of recording
import picture  # noqa: E402
import sound  # noqa: E402
from events import wait_for  # noqa: E402

PICTURES = Path(os.environ.get("VANTORO_DESKTOP_PICTURES", sound.ROOT / "build/desktops"))
SECONDS_TO_RETURN = 10
# Of a symbol: the least of it that changes with the level, and that stands out, in pixels.
LEAST_CHANGE = 8
MOST_CHANGE = 2000
LEAST_SEEN = 24
LEAST_CONTRAST = 2
ATTEMPTS = 3
PICTURES_OF_REST = 5
SYSTEM_AUDIO, MICROPHONE = "the computer's sound", "the microphone"
TONES = {SYSTEM_AUDIO: (440,), MICROPHONE: (1000, "--into", sound.MICROPHONE)}


class DesktopCase(WindowCase):
    def start_part(self, *command, **environment):
        """Starts a part of the desktop, which ends with the case."""
        # A screen reader and a starting panel would wait for each other.
        log = self.home / "desktop.log"
        with log.open("a") as output:
            process = subprocess.Popen(list(map(str, command)), env={**os.environ, "NO_AT_BRIDGE": "1", **environment},
                                       stdin=subprocess.DEVNULL, stdout=output, stderr=output)
        self.addCleanup(end, process)
        return process

    def owned(self, name):
        """Returns when somebody on the session bus has this name."""
        wait_for(lambda: subprocess.run(
            ["gdbus", "call", "--session", "--dest", "org.freedesktop.DBus", "--object-path", "/org/freedesktop/DBus",
             "--method", "org.freedesktop.DBus.NameHasOwner", name], capture_output=True, text=True, check=True)
            .stdout.startswith("(true"), f"{name} on the session bus")

    def save(self, shown, name):
        shown.save(PICTURES / f"{self._testMethodName.removeprefix('test_')}-{name}.png")

    def symbol_of(self, source):
        """Where the panel shows a source's level, while it is recorded, with pictures in silence and in sound.

        The symbol is what changes with the source's sound, and changes back.
        """
        others = set()  # what changes by itself, such as a clock
        for _ in range(ATTEMPTS):
            at_rest = self.still_picture()
            with sound.tone(*TONES[source]):
                loud = wait_for(lambda: self._other_picture(at_rest, others), f"a change with {source}")
            changed = at_rest.differences(loud) - others
            remains = self._what_remains(at_rest, changed)
            others |= remains
            places = picture.places(changed - remains) if len(changed - remains) <= MOST_CHANGE else []
            if len(places) == 1:
                return places[0], at_rest, loud
        raise AssertionError(f"{source} has no symbol whose level changes: {places}")

    @staticmethod
    def still_picture():
        """What the screen shows when movements have ended."""
        shown = [picture.of_screen()]

        def stands_still():
            shown.append(picture.of_screen())
            if shown[-1].differences(shown[0]):
                del shown[:-1]
            return len(shown) == PICTURES_OF_REST

        wait_for(stands_still, "the screen to stand still")
        return shown[-1]

    @staticmethod
    def _other_picture(at_rest, others):
        """What the screen shows, if it has changed."""
        shown = picture.of_screen()
        return shown if len(at_rest.differences(shown) - others) >= LEAST_CHANGE else None

    @staticmethod
    def _what_remains(at_rest, changed):
        """Waits for the change to end; returns what of it does not."""
        with contextlib.suppress(AssertionError):
            wait_for(lambda: not at_rest.differences(picture.of_screen()) & changed, "its end", SECONDS_TO_RETURN)
        return at_rest.differences(picture.of_screen()) & changed

    def assert_seen(self, place, at_rest, loud, source):
        """The symbol stands out from its panel, and shows more of itself in sound than in silence."""
        left, top, right, bottom = place
        size = max(right - left, bottom - top)
        around = (left - 2 * size, top - 2, right + 4, bottom + 2)
        contrasts = []
        for shown in (at_rest, loud):
            pixels = shown.pixels_in(around)
            panel = picture.background(pixels)
            contrasts.append([picture.contrast(pixel, panel) for pixel in pixels])
        seen = sum(contrast >= LEAST_CONTRAST for contrast in contrasts[0])
        self.assertGreaterEqual(seen, LEAST_SEEN, f"{source} at rest")
        self.assertGreater(sum(contrasts[1]), sum(contrasts[0]) + LEAST_CHANGE, f"{source} in sound")


def click_at(place):
    left, top, right, bottom = place
    subprocess.run(["xdotool", "mousemove", str((left + right) // 2), str((top + bottom) // 2), "click", "1"],
                   check=True)


def leave():
    """Moves the mouse where no panel is."""
    subprocess.run(["xdotool", "mousemove", "640", "512"], check=True)


def end(process):
    process.terminate()
    try:
        process.wait(5)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()

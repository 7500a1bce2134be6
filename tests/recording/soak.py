#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A long recording in a private desktop: are both tracks still in sync at its end?

Prints the offset between clicks that reached an output and the microphone at the same instant.

Run as: tools/session -- tests/recording/soak.py [--minutes N]
"""

import argparse
import sys
import tempfile
import threading
from pathlib import Path

sys.dont_write_bytecode = True

import recorder  # noqa: E402
from clicks import Clicks, click_offsets  # noqa: E402

LARGEST_OFFSET = 0.020  # seconds


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--minutes", type=float, default=10)
    minutes = parser.parse_args().minutes
    with tempfile.TemporaryDirectory(prefix="vantoro-soak-") as folder, Clicks(Path(folder), 60 * minutes + 60):
        recording = recorder.Recording(folder)
        threading.Event().wait(60 * minutes)
        recording.kill()
        offsets = click_offsets(recorder.temporary_files(folder)[0])
    print(f"{len(offsets)} clicks; offset at the start {1000 * offsets[0]:.1f} ms, at the end "
          f"{1000 * offsets[-1]:.1f} ms, at most {1000 * max(map(abs, offsets)):.1f} ms")
    expected = 60 * minutes - 15  # the last fragment may be missing
    return 0 if len(offsets) > expected and max(map(abs, offsets)) < LARGEST_OFFSET else 1


if __name__ == "__main__":
    sys.exit(main())

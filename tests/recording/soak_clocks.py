#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A long recording of a microphone and an output whose clocks differ by 1000 ppm, and may drift.

Prints the offset between the tracks, and each track's deviation from true time in ppm once its clock is known.

Run as: tools/session --long-cycles -- tests/recording/soak_clocks.py [--minutes N] [--wandering PPM_A_MINUTE]
"""

import argparse
import sys
import tempfile
from pathlib import Path

sys.dont_write_bytecode = True

import pulses  # noqa: E402
import recorder  # noqa: E402
import sound  # noqa: E402

LARGEST_DISTANCE = 0.005  # seconds
LARGEST_SLOPE = 2e-6
SECONDS_TO_SETTLE = 40
DRIFT = 500  # ppm


def record(folder, minutes, wandering):
    """The times of the pulses in each track."""
    drift = DRIFT - 2 * abs(wandering)  # it wanders up to DRIFT
    with pulses.microphone("microphone-card", drift, wandering) as microphone, \
            pulses.output("output-card", -drift, -wandering) as output, \
            pulses.application("player", output.name) as player:
        sound.wait_for_link(f"{player.name}:output_MONO", f"{output.name}:playback_MONO")
        recording = recorder.Recording(folder, "--microphone", microphone.name)
        recording.watch.wait_for_fragments(1 + round(6 * minutes))
        print(recording.kill().errors, end="")
    temporary, = recorder.temporary_files(folder)
    return [pulses.pulse_times(sound.decoded(temporary, track)[0]) for track in (0, 1)]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--minutes", type=float, default=10)
    parser.add_argument("--wandering", type=float, default=0)
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="vantoro-soak-") as folder:
        tracks = record(Path(folder), arguments.minutes, arguments.wandering)
    distances = pulses.distances(*tracks)
    farthest = max(map(abs, distances))
    farthest_settled = max(map(abs, distances[SECONDS_TO_SETTLE:]))
    slopes = [pulses.slope(track, SECONDS_TO_SETTLE) for track in tracks]
    print(f"{len(tracks[0])} pulses of the output and {len(tracks[1])} of the microphone; at most "
          f"{1000 * farthest:.2f} ms apart, {1000 * farthest_settled:.2f} ms after {SECONDS_TO_SETTLE} s; "
          f"{1e6 * slopes[0]:.2f} and {1e6 * slopes[1]:.2f} millionths off the true time")
    is_whole = min(map(len, tracks)) >= 60 * arguments.minutes - 1
    return 0 if is_whole and farthest < LARGEST_DISTANCE and max(map(abs, slopes)) < LARGEST_SLOPE else 1


if __name__ == "__main__":
    sys.exit(main())

# SPDX-License-Identifier: GPL-3.0-or-later
"""Compares a recording with the output's monitor at the same time."""

import dataclasses
import math
import operator
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "recording"))

import sound  # noqa: E402

BLOCK = 240
SECONDS = BLOCK / sound.RATE  # 5 ms
FRAME = 20  # blocks: 0.1 s
SOUNDS = 0.05  # as a share of the loudest block's amplitude
IS_SILENT = 0.01
NEAR = 1  # blocks, on both sides: recordings are aligned to half a block
NEARBY = 20  # blocks
SMEARED = 8  # blocks: the most that a coder smears a sound
MOST_DECIBELS = 0.1
MOST_MISSING = 0.004  # seconds: less than one block
MOST_ADDED = 0.01
MOST_SHIFT = 0.01
MOST_AT_A_MOVE = 0.1  # seconds: some cycles that both outputs have, or neither
MOST_DECIBELS_AT_A_MOVE = 0.5


class NothingPlayed(Exception):
    """The monitor has nothing to compare with."""


@dataclasses.dataclass
class Difference:
    """Differences of a recording from the monitor; levels in decibels, shares of the time with sound in the monitor."""
    level: float
    worst_band: float
    bands: int
    missing: float  # share of the time
    added: float  # seconds with sound in the recording but not in the monitor
    onset: float  # seconds missing at the beginning
    end: float  # seconds missing at the end
    shift: float  # seconds: the largest offset of a burst relative to the others
    heard: float  # seconds with sound in the monitor



def compare(monitor, recording, tones):
    """Takes both as channels of samples, and the possible tones of each channel; only tones in the monitor count."""
    expected, got = envelope(monitor), envelope(recording)
    loudest = max(expected, default=0)
    if loudest < 0.001:
        raise NothingPlayed("the output's monitor is silent")
    sounding = [index for index, level in enumerate(expected) if level > SOUNDS * loudest]
    heard = len(sounding) * SECONDS
    if max(got, default=0) < IS_SILENT * loudest:
        return Difference(-math.inf, -math.inf, 0, 1, 0, heard, heard, 0, heard)
    lag = best_lag(expected, got)
    lags = {index: lag + moved for span in runs(sounding)
            for moved in [nearby_lag(expected, shifted(got, lag, len(expected)), span)] for index in span}
    got = [got[index + lags.get(index, lag)] if 0 <= index + lags.get(index, lag) < len(got) else 0.0
           for index in range(len(expected))]
    missing = {index for index in sounding if max(around(got, index, NEAR)) < expected[index] / 4}
    added = sum(level > SOUNDS * loudest and max(around(expected, index, SMEARED)) < IS_SILENT * loudest
                for index, level in enumerate(got))
    frames = [(frame, frame + lags[frame]) for frame in whole_frames(set(sounding), missing)]
    level, bands = levels(monitor, recording, frames, tones)
    return Difference(level, max(bands, key=abs, default=0), len(bands), len(missing) / len(sounding),
                      added * SECONDS, in_a_row(sounding, missing), in_a_row(sounding[::-1], missing),
                      max(abs(moved - lag) for moved in lags.values()) * SECONDS, heard)


def envelope(channels):
    """The amplitude of all channels together, per block."""
    count = min(map(len, channels), default=0) // BLOCK
    return [math.sqrt(sum(energy(channel, index * BLOCK, BLOCK) for channel in channels) / BLOCK)
            for index in range(count)]


def energy(samples, begin, count):
    part = samples[begin:begin + count]
    return sum(map(operator.mul, part, part))


def best_lag(expected, got):
    """By how many blocks the second envelope is later."""
    def likeness(lag):
        first, second = max(0, -lag), max(0, lag)
        return sum(map(operator.mul, expected[first:], got[second:]))

    # Remove the mean of all blocks; otherwise the longest overlap would win.
    expected, got = ([level - sum(levels) / len(levels) for level in levels] for levels in (expected, got))
    return max(range(-len(expected) + FRAME, len(got) - FRAME), key=likeness)


def runs(blocks):
    """The bursts."""
    found = []
    for block in blocks:
        if found and block - found[-1][-1] <= SMEARED:
            found[-1].append(block)
        else:
            found.append([block])
    return found


def nearby_lag(expected, got, burst):
    """By how many blocks a burst is later than the others; zero if the difference is a single block."""
    begin, end = max(NEARBY, burst[0] - SMEARED), min(len(got) - NEARBY, burst[-1] + SMEARED)

    def unlikeness(lag):
        return sum(abs(first - second) for first, second in zip(expected[begin:end], got[begin + lag:end + lag]))

    best = min(range(-NEARBY, NEARBY + 1), key=unlikeness)
    return best if abs(best) > NEAR else 0


def shifted(levels, lag, count):
    return [levels[index + lag] if 0 <= index + lag < len(levels) else 0.0 for index in range(count)]


def around(levels, index, distance):
    return levels[max(0, index - distance):index + distance + 1]


def whole_frames(sounding, missing):
    """The positions, in blocks, of spans in which both have sound throughout."""
    frames, begin = [], None
    for index in range(max(sounding) + 2):
        good = index in sounding and index not in missing
        begin = (index if begin is None else begin) if good else None
        # Exclude the ramps and the misalignment.
        if begin is not None and index - begin >= FRAME + 3:
            frames.append(begin + 2)
            begin = index - 1
    return frames


def levels(monitor, recording, frames, tones):
    """The level difference in all of the frames, and in each tone of the monitor."""
    both = [(channels, [frame[which] for frame in frames]) for which, channels in enumerate((monitor, recording))]
    totals = [sum(energy(channel, begin * BLOCK, FRAME * BLOCK) for channel in channels for begin in begins)
              for channels, begins in both]
    bands = []
    for side, channel_tones in enumerate(tones):
        for tone in channel_tones:
            expected, got = (
                sum(sound.amplitude(channels[side], tone, begin * SECONDS, (begin + FRAME) * SECONDS) ** 2
                    for begin in begins) for channels, begins in both)
            bands.append((expected, got))
    strongest = max((expected for expected, _ in bands), default=0)
    audible = [decibels(got / expected) for expected, got in bands if expected > strongest / 100]
    return decibels(totals[1] / totals[0]) if totals[0] else 0.0, audible


def decibels(energies):
    return 10 * math.log10(max(energies, 1e-12))


def in_a_row(blocks, missing):
    """How many seconds are missing continuously from the beginning."""
    first = next((index for index, block in enumerate(blocks) if block not in missing), len(blocks))
    return first * SECONDS


def faults(difference, keeps_time=True):
    """The names of the limits exceeded; empty if the recording matches."""
    if difference.missing > 0.999:
        return ["silent"]
    found = []
    few = 0 if keeps_time else MOST_AT_A_MOVE
    decibels_apart = MOST_DECIBELS if keeps_time else MOST_DECIBELS_AT_A_MOVE
    if abs(difference.level) > decibels_apart:
        found.append("level")
    if abs(difference.worst_band) > decibels_apart:
        found.append("bands")
    if keeps_time and difference.shift > MOST_SHIFT:
        found.append("shift")
    if difference.missing * difference.heard > max(MOST_MISSING, few):
        found.append("gaps")
    if difference.added > max(MOST_ADDED, few):
        found.append("more than was heard")
    return found

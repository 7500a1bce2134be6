# SPDX-License-Identifier: GPL-3.0-or-later
"""Sound cards with independent clocks that play a pulse at each full second; finds the pulses in a recording."""

import os
import signal
import subprocess
from pathlib import Path

import sound

DEVICE = Path(os.environ.get("VANTORO_PROGRAM", sound.ROOT / "build/release/vantoro")).parent / \
    "tests/support/drifting_device"
REACH = 384  # frames on each side of a pulse's peak: everything audible


class Node:
    """A device or an application, for the duration of `with`."""

    def __init__(self, kind, name, *arguments):
        self.name = name
        self._port = "capture_MONO" if kind == "source" else "monitor_MONO" if kind == "sink" else "output_MONO"
        self._process = subprocess.Popen([DEVICE, kind, name, *map(str, arguments)])

    def __enter__(self):
        try:
            sound.wait_for_output_ports(self.name)
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        self._process.kill()
        self._process.wait()

    def stand_still(self):
        """Stops the clock for two seconds."""
        self._process.send_signal(signal.SIGUSR1)


def microphone(name, millionths, wandering=0, heard="pulses"):
    return Node("source", name, millionths, wandering, heard)


def output(name, millionths, wandering=0):
    return Node("sink", name, millionths, wandering)


def application(name, target, heard="pulses"):
    return Node("player", name, target, heard)


def pulse_times(samples, level=0.1):
    """The centre of each pulse's energy, in seconds."""
    times = []
    begin = REACH
    while begin + REACH < len(samples):
        block = samples[begin:begin + 480]
        if sound.peak_of(block) < level:
            begin += 480
            continue
        first = next(index for index, sample in enumerate(block) if abs(sample) >= level)
        rise = samples[begin + first:begin + first + 240]
        loudest = begin + first + max(range(len(rise)), key=lambda index: abs(rise[index]))
        part = samples[loudest - REACH:loudest + REACH]
        energy = [sample * sample for sample in part]
        middle = sum(index * value for index, value in enumerate(energy)) / sum(energy)
        times.append((loudest - REACH + middle) / sound.RATE)
        begin = loudest + sound.RATE // 2
    return times


def strays(times):
    """Each pulse's offset, in seconds, from the full seconds that the first pulses mark."""
    return [time - times[0] - round(time - times[0]) for time in times]


def slope(times, begin=0.0):
    """The recording's excess per true second, after its first second: a least-squares fit."""
    points = [(time, stray) for time, stray in zip(times, strays(times)) if time >= begin]
    count = len(points)
    mean_time = sum(time for time, _ in points) / count
    mean_stray = sum(stray for _, stray in points) / count
    return sum((time - mean_time) * (stray - mean_stray) for time, stray in points) / \
        sum((time - mean_time) ** 2 for time, _ in points)


def distances(system, spoken):
    """The delay, in seconds, of the microphone's pulses relative to the system's of the same second."""
    return [min((other - time for other in spoken), key=abs) for time in system]

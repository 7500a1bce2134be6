# SPDX-License-Identifier: GPL-3.0-or-later
"""Plays sounds in the private desktop and measures them in a recording."""

import array
import functools
import json
import math
import operator
import subprocess
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
RATE = 48000
FIRST_OUTPUT = "vantoro-output-1"
SECOND_OUTPUT = "vantoro-output-2"
MICROPHONE = "vantoro-microphone"
SECONDS_TO_APPEAR = 30


class Playing:
    """A separate application that plays a sound, for the duration of `with`."""

    _count = 0

    def __init__(self, *arguments, name=None):
        Playing._count += 1
        self.name = name or f"test-player-{Playing._count}"
        command = [ROOT / "tools/play-test-sound", "--name", self.name, *map(str, arguments)]
        self._process = subprocess.Popen(command)

    def __enter__(self):
        try:
            wait_for_output_ports(self.name)
        except BaseException:
            self.stop()
            raise
        return self

    def __exit__(self, *_):
        self.stop()

    def stop(self):
        self._process.kill()
        self._process.wait()

    def has_ended(self):
        return self._process.poll() is not None

    def wait(self, timeout):
        self._process.wait(timeout)


def tone(frequency, *arguments, amplitude=0.25, seconds=120):
    return Playing("--tone", frequency, "--amplitude", amplitude, "--seconds", seconds, *arguments)


def noise(folder, *arguments):
    """A sound that takes all the bits that a coder may use."""
    file = Path(folder) / "noise.wav"
    subprocess.run(["sox", "-q", "-n", "-r", str(RATE), "-c", "1", "-b", "16", str(file), "synth", "60", "whitenoise"],
                   check=True)
    return Playing("--file", file, "--amplitude", 0.3, *arguments)


def use_microphone():
    """Records for a moment: PipeWire 1.4 reports what the mixer is set to only after a microphone's first use."""
    subprocess.run(f"parecord --device={MICROPHONE} --latency-msec=20 --raw | head --bytes=1", shell=True, check=True,
                   stdout=subprocess.DEVNULL)


def wait_for_output_ports(node):
    """Returns when a node of this name has an output port."""
    wait_for_port("-o", f"{node}:")


def wait_for_input_port(port):
    """Returns when there is an input port whose name has this prefix."""
    wait_for_port("-i", port)


def wait_for_port(direction, beginning):
    """Follows the list of ports."""
    monitor = subprocess.Popen(["timeout", str(SECONDS_TO_APPEAR), "stdbuf", "-oL", "pw-link", "-m", direction],
                               stdout=subprocess.PIPE, text=True)
    try:
        if not any(words[-1].startswith(beginning) for words in words_of(monitor.stdout)):
            raise AssertionError(f"{beginning} did not appear within {SECONDS_TO_APPEAR} s")
    finally:
        monitor.kill()
        monitor.wait()
        monitor.stdout.close()


def wait_until_gone(node):
    """Returns when no node of this name is left; polls."""
    deadline = time.monotonic() + SECONDS_TO_APPEAR
    while f'"{node}"' in subprocess.run(["pw-cli", "ls", "Node"], check=True, capture_output=True, text=True).stdout:
        if time.monotonic() > deadline:
            raise AssertionError(f"{node} is still there after {SECONDS_TO_APPEAR} s")


def wait_for_link(output_port, input_port):
    """Returns when an output's port is linked to another; follows the list of links."""
    monitor = subprocess.Popen(["timeout", str(SECONDS_TO_APPEAR), "stdbuf", "-oL", "pw-link", "-m", "-l"],
                               stdout=subprocess.PIPE, text=True)
    try:
        if not is_linked(output_port, input_port, monitor.stdout):
            raise AssertionError(f"{output_port} was not linked within {SECONDS_TO_APPEAR} s")
    finally:
        monitor.kill()
        monitor.wait()
        monitor.stdout.close()


def is_linked_before_it_ends(player, output_port, input_port):
    """Whether an output's port is linked to another before the player ends; polls."""
    deadline = time.monotonic() + SECONDS_TO_APPEAR
    while time.monotonic() < deadline:
        links = subprocess.run(["pw-link", "-l"], check=True, capture_output=True, text=True).stdout
        if is_linked(output_port, input_port, links.splitlines()):
            return True
        if player.has_ended():
            return False
    raise AssertionError(f"{output_port} was not linked within {SECONDS_TO_APPEAR} s")


def is_linked(output_port, input_port, lines):
    """Reads pw-link's list until it is so: a port precedes its links; up to version 1.4, a new link is one line."""
    port = ""
    for words in words_of(lines):
        if words == ["|->", input_port] and port == output_port or words == [output_port, "->", input_port]:
            return True
        if len(words) == 1:
            port = words[0]
    return False


def words_of(lines):
    """The words of pw-link's lines on ports and links, without the mark that its monitor sets before each."""
    for line in lines:
        words = line.lstrip("=+* ").split()
        if words and not line.startswith("-"):  # removed
            yield words


def probe(path, *entries):
    """ffprobe's description of a file."""
    result = subprocess.run(
        ["ffprobe", "-v", "error", "-show_format", "-show_streams", "-of", "json", *entries, str(path)],
        check=True, capture_output=True, text=True)
    if result.stderr:
        raise AssertionError(f"ffprobe complains: {result.stderr}")
    return json.loads(result.stdout)


def decoded(path, track=0):
    """The channels of a track as the ffmpeg program decodes them, at 48 kHz."""
    channels = probe(path)["streams"][track]["channels"]
    result = subprocess.run(
        ["ffmpeg", "-v", "error", "-i", str(path), "-map", f"0:a:{track}", "-f", "f32le", "-ar", str(RATE), "-"],
        check=True, capture_output=True)
    if result.stderr:
        raise AssertionError(f"ffmpeg complains: {result.stderr.decode()}")
    samples = array.array("f", result.stdout)
    return [samples[channel::channels] for channel in range(channels)]


@functools.cache
def windowed_wave(frequency, count):
    """The factors for the samples that give both parts of a frequency's amplitude."""
    step = 2 * math.pi * frequency / RATE
    turn = 2 * math.pi / count
    window = [(1 - math.cos(turn * index)) * 2 / count for index in range(count)]
    return ([weight * math.cos(step * index) for index, weight in enumerate(window)],
            [weight * math.sin(step * index) for index, weight in enumerate(window)])


def amplitude(samples, frequency, begin, end):
    """The amplitude of one frequency between two times, by a windowed sum."""
    part = samples[round(begin * RATE):round(end * RATE)]
    return math.hypot(*(sum(map(operator.mul, part, wave)) for wave in windowed_wave(frequency, len(part))))


def amplitudes(samples, frequency, begin=0, end=None):
    """The amplitude in each tenth of a second. Longer spans would underestimate a tone, because an output's clock
    shifts its pitch a little."""
    end = len(samples) / RATE if end is None else end
    return [amplitude(samples, frequency, begin + index / 10, begin + (index + 1) / 10)
            for index in range(int((end - begin) * 10 + 1e-6))]


def usual_amplitude(samples, frequency, begin, end):
    """What a quarter of the tenths of a second reach. A busy machine delays players for moments, which lowers the
    amplitude in places and never raises it."""
    return sorted(amplitudes(samples, frequency, begin, end), reverse=True)[int((end - begin) * 10 / 4)]


def longest_silence(samples, frequency, level):
    """The longest time, in seconds, that a tone stays below a level."""
    longest = lasting = 0
    for measured in amplitudes(samples, frequency):
        lasting = lasting + 1 if measured < level else 0
        longest = max(longest, lasting)
    return longest / 10


def decibels(ratio):
    return 20 * math.log10(max(ratio, 1e-9))


def peak(samples, begin=0, end=None):
    part = samples[round(begin * RATE):None if end is None else round(end * RATE)]
    return max(map(abs, part), default=0)


def sounding(samples, threshold, block=480):
    """The spans, in seconds, in which blocks of 10 ms reach a peak; bridges gaps up to 50 ms."""
    spans = []
    for begin in range(0, len(samples), block):
        if peak_of(samples[begin:begin + block]) >= threshold:
            if spans and begin - spans[-1][1] <= 5 * block:
                spans[-1][1] = begin + block
            else:
                spans.append([begin, begin + block])
    return [(begin / RATE, end / RATE) for begin, end in spans]


def peak_of(samples):
    return max(max(samples), -min(samples))

# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs a program on a disk on which one call fails, and checks its messages and the files that it leaves."""

import array
import hashlib
import os
import select
import shutil
import signal
import subprocess
import tempfile
import time
from collections import namedtuple
from pathlib import Path

import recorder
import sound
from movie_boxes import whole_frames

TESTS = Path(recorder.PROGRAM).parent / "tests/crash"
FED_RECORDER = TESTS / "fed_recorder"
FAILING_CALLS = TESTS / "failing_calls.so"

CHANNELS = 2
PACKET = 1024  # frames; the last packet is decoded in full
ONCE = ("EIO", "ENOSPC")
HOWS = (*ONCE, "hang", "gone", "die")
# At this call, all of the recording is in its temporary file.
WRITTEN = "unlink temporary 1"
# After a signal, with a margin for a busy machine.
SECONDS_TO_END = 5 + 2
SECONDS_TO_MEET = 60

Call = namedtuple("Call", "kind role number result size")
Fault = namedtuple("Fault", "call how")
Outcome = namedtuple("Outcome", "status output errors calls problems")


def is_met(outcome, fault):
    return any(named(call) == fault.call and call.result in ("fails", "hangs", "dies") for call in outcome.calls)


def is_sync(call):
    """Whether it syncs the recording in progress."""
    return call.role == "temporary" and call.kind in ("fsync", "fdatasync") and call.result == "succeeds"


def named(call):
    return f"{call.kind} {call.role} {call.number}"


class LogReader:
    """Reads a program's calls as they happen."""

    def __init__(self, descriptor):
        self._descriptor = descriptor
        self._rest = b""
        self.calls = []

    def read_until(self, condition, deadline):
        """False at the program's end or at the deadline."""
        while not condition():
            ready, _, _ = select.select([self._descriptor], [], [], max(0, deadline - time.monotonic()))
            data = os.read(self._descriptor, 65536) if ready else b""
            if not data:
                return False
            *lines, self._rest = (self._rest + data).split(b"\n")
            for line in lines:
                kind, role, number, result, size = line.decode().split()
                self.calls.append(Call(kind, role, int(number), result, int(size)))
        return True

    def has_synced(self):
        """Whether the first fragment and the name of its file are on disk."""
        return any(map(is_sync, self.calls)) and any(
            call.kind == "fsync" and call.role == "folder" and call.result == "succeeds" for call in self.calls)

    def hangs(self):
        return any(call.result == "hangs" for call in self.calls)


def environment_with(folder, log, fault=None):
    """The environment in which a program logs its calls to a descriptor, and one call fails."""
    environment = {**os.environ, "LD_PRELOAD": str(FAILING_CALLS), "VANTORO_FAILING_FOLDER": str(folder),
                   "VANTORO_FAILING_LOG": str(log)}
    if fault:
        environment |= {"VANTORO_FAILING_CALL": fault.call, "VANTORO_FAILING_HOW": fault.how}
    return environment


def run(command, folder, fault=None):
    """Runs a program to its end. If it hangs, it gets a signal, and a second one if needed."""
    reading, writing = os.pipe()
    environment = environment_with(folder, writing, fault)
    with tempfile.TemporaryFile("w+") as output, tempfile.TemporaryFile("w+") as errors:
        process = subprocess.Popen([str(word) for word in command], env=environment, pass_fds=[writing],
                                   stdin=subprocess.DEVNULL, stdout=output, stderr=errors)
        os.close(writing)
        log = LogReader(reading)
        problems = []
        try:
            log.read_until(log.hangs, time.monotonic() + SECONDS_TO_MEET)
            if log.hangs():
                problems += end(process)
            log.read_until(lambda: False, time.monotonic() + SECONDS_TO_MEET)
        finally:
            if process.poll() is None and not log.hangs():
                try:
                    process.wait(SECONDS_TO_END)
                except subprocess.TimeoutExpired:
                    process.kill()
                    problems.append("it does not end")
            process.wait()
            os.close(reading)
        output.seek(0)
        errors.seek(0)
        return Outcome(process.returncode, output.read(), errors.read(), log.calls, problems)


def end(process):
    for _ in range(2):
        process.send_signal(signal.SIGTERM)
        try:
            process.wait(SECONDS_TO_END)
            return []
        except subprocess.TimeoutExpired:
            pass
    process.kill()
    process.wait()
    return [f"two signals do not end it within {SECONDS_TO_END} s each"]


class Foreigners:
    """Files of others, under the program's preferred names or similar ones."""

    SECONDS_AHEAD = 30

    def __init__(self, folder):
        now = int(time.time())
        names = [time.strftime("Vantoro-%Y-%m-%d-%H%M%S.m4a", time.localtime(now + second))
                 for second in range(self.SECONDS_AHEAD)]
        names += ["notes.partial.mov", ".Vantoro-notes.partial.mov", "Vantoro-holiday.exporting.m4a", "Vantoro.m4a"]
        self._content = {folder / name: f"of somebody else: {name}".encode() for name in names}
        for path, content in self._content.items():
            path.write_bytes(content)

    def __contains__(self, path):
        return path in self._content

    def problems(self):
        return [f"somebody else's {path.name} is gone or changed" for path, content in self._content.items()
                if not path.is_file() or path.read_bytes() != content]


class Folder:
    """A folder with recordings, and with files of others."""

    def __init__(self, path):
        self.path = path
        path.mkdir(parents=True, exist_ok=True)
        self.foreigners = Foreigners(path)

    def _files(self, ending):
        return sorted(path for path in self.path.rglob("*" + ending) if path not in self.foreigners)

    def temporaries(self):
        return self._files(".partial.mov")

    def with_sound(self):
        return [path for path in self.temporaries() if min(whole_frames(path.read_bytes()).values(), default=0) > 0]

    def stagings(self):
        return self._files(".exporting.m4a")

    def tracks(self):
        """The sources' own files."""
        return [path for path in self._files(").m4a") if path not in self.stagings()]

    def finals(self):
        return [path for path in self._files(".m4a") if path not in (*self.stagings(), *self.tracks())]

    def kept(self):
        """Original files that were kept beside the final ones."""
        return self._files(".incomplete.mov")

    def recover(self):
        """Runs a salvage without faults, if there is anything to salvage; returns what is wrong with it."""
        if not self.with_sound():
            return []
        result = recorder.run("recover", "--folder", self.path)
        # A death during a write leaves a torn fragment: its file is kept beside the result, and the user is told.
        is_torn = result.status == 3 and self._files(".incomplete.mov")
        problems = [] if result.status == 0 or is_torn else [f"the salvage afterwards ends with {result}"]
        return problems + [f"{path.name} is still there after the salvage" for path in self.with_sound()]


def heard_in(path):
    """The number of frames in a decoded final file, which must be the played tones."""
    result = subprocess.run(["ffmpeg", "-v", "error", "-i", str(path), "-f", "f32le", "-"],
                            check=True, capture_output=True)
    if result.stderr:
        raise AssertionError(f"it does not decode: {result.stderr.decode()}")
    samples = array.array("f", result.stdout)[::CHANNELS]
    for second in range(len(samples) // sound.RATE):
        for low in (300, 2000):
            level = sound.amplitude(samples, low + 50 * (second % 20), second + 0.3, second + 0.4)
            if abs(sound.decibels(level / 0.19)) > 1:
                raise AssertionError(f"it holds another sound in second {second}: {level}")
    return len(samples)


def wrong_in_track(path, frames):
    is_microphone = "microphone" in path.name or "麦克风" in path.name
    low, channels = (2000, 1) if is_microphone else (300, 2)
    decoded = sound.decoded(path)
    if len(decoded) != channels or not frames <= len(decoded[0]) < frames + PACKET:
        return [f"holds {len(decoded[0])} frames of {len(decoded)} channels"]
    problems = []
    for second in range(frames // sound.RATE):
        own, other = (sound.amplitude(decoded[0], tone + 50 * (second % 20), second + 0.3, second + 0.4)
                      for tone in (low, 2300 - low))
        if abs(sound.decibels(own / 0.19)) > 1 or other > 0.001:
            problems.append(f"holds another sound in second {second}: {own}, {other}")
    return problems


def checked(path):
    decoded = heard_in(path)
    stream, = sound.probe(path)["streams"]
    told = round(float(stream["duration"]) * sound.RATE)
    if not told <= decoded < told + PACKET or stream["channels"] != CHANNELS:
        raise AssertionError(f"it holds {decoded} frames, and says {told} of {stream['channels']} channels")
    return told


_known = {}


def without_tags(data):
    """What files of equal sound share: all but their titles and times."""
    start = data.rindex(b"udta") - 4
    data = bytearray(data[:start] + data[start + int.from_bytes(data[start:start + 4], "big"):])
    for name in (b"mvhd", b"tkhd", b"mdhd"):
        times = data.rindex(name) + 8
        data[times:times + 8] = bytes(8)
    return data


def problems_of_track(path, frames):
    """What is wrong with the file of one source. Equal sound is checked only once."""
    try:
        content = hashlib.sha256(without_tags(path.read_bytes())).digest(), frames
        if content not in _known:
            _known[content] = wrong_in_track(path, frames)
        return [f"{path.name} {problem}" for problem in _known[content]]
    except (AssertionError, subprocess.CalledProcessError, ValueError) as error:
        return [f"{path.name}: {error}"]


def problems_of(path):
    """How many frames a final file holds, and what is wrong with it. Equal sound is checked only once."""
    try:
        content = hashlib.sha256(without_tags(path.read_bytes())).digest()
    except ValueError as error:
        return 0, [f"{path.name}: {error}"]
    if content not in _known:
        try:
            _known[content] = checked(path), []
        except (AssertionError, subprocess.CalledProcessError, ValueError) as error:
            _known[content] = 0, [f"{path.name}: {error}"]
    return _known[content]


class Leftovers:
    """Recordings whose recorder died, to be copied into a folder repeatedly."""

    def __init__(self, folder, deaths):
        """`deaths`: for each number of frames to record, the call at which the recorder dies."""
        self.paths = []
        self.frames = []
        for frames, call in deaths.items():
            place = folder / str(frames)
            place.mkdir(parents=True)
            run([FED_RECORDER, place, frames], place.resolve(), Fault(call, "die"))
            path, = recorder.temporary_files(place)
            self.paths.append(path)
            self.frames.append(min(whole_frames(path.read_bytes()).values()))

    def put_into(self, folder):
        for path in self.paths:
            shutil.copy2(path, folder)

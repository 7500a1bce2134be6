#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Eight recorders, two salvages and a killer in one folder, for minutes: is every recording accounted for?

Each recorder records for some seconds, is told to stop, and starts again; the killer ends recorders and salvages at
random. Whoever removes a temporary file keeps a hard link to it elsewhere (failing_calls.cpp). The recorders capture
noise from a microphone at full volume, so the encoded sound of each recording is unique and ends up in the final file
byte for byte. At the end, each temporary file that held sound must be a final file, and there must be no other final file.

Run as: tools/session -- tests/crash/soak_processes.py [--minutes N] [--seed N]
"""

import argparse
import collections
import hashlib
import os
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "recording"))

import recorder  # noqa: E402
import sound  # noqa: E402
from faults import FAILING_CALLS  # noqa: E402
from movie_boxes import packets, whole_frames  # noqa: E402

RECORDERS = 8
SALVAGES = 2
# Killed, or told to stop before it listened for signals.
KILLED = (-signal.SIGKILL, -signal.SIGINT)

Ended = collections.namedtuple("Ended", "is_recorder status output errors")


class Soak:
    def __init__(self, place, seconds, seed):
        self._folder = place / "recordings"
        self._kept = place / "kept"
        self._folder.mkdir()
        self._kept.mkdir()
        self._environment = {**os.environ, "LD_PRELOAD": str(FAILING_CALLS),
                             "VANTORO_FAILING_FOLDER": str(self._folder), "VANTORO_KEPT_RECORDINGS": str(self._kept)}
        self._seconds = seconds
        self._random = random.Random(seed)
        self._over = threading.Event()
        self._mutex = threading.Lock()
        self._running = []
        self._ended = []

    def run(self):
        """What is wrong at the end, and the counts of everything."""
        workers = [threading.Thread(target=self._record_again_and_again) for _ in range(RECORDERS)]
        workers += [threading.Thread(target=self._salvage_again_and_again) for _ in range(SALVAGES)]
        workers += [threading.Thread(target=self._kill_now_and_then)]
        for worker in workers:
            worker.start()
        self._over.wait(self._seconds)
        self._over.set()
        for worker in workers:
            worker.join()
        self._finish(self._start(False, "recover"))
        return self._account()

    def _some_seconds(self, least, most):
        with self._mutex:
            return self._random.uniform(least, most)

    def _start(self, is_recorder, *arguments):
        process = subprocess.Popen(
            [recorder.PROGRAM, *arguments, "--folder", str(self._folder)],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
            env=self._environment)
        with self._mutex:
            self._running.append(process)
        process.is_recorder = is_recorder
        return process

    def _finish(self, process):
        output, errors = process.communicate(timeout=recorder.SECONDS_TO_END)
        with self._mutex:
            self._running.remove(process)
            self._ended.append(Ended(process.is_recorder, process.returncode, output, errors))

    def _record_again_and_again(self):
        while not self._over.is_set():
            process = self._start(True, *recorder.IN_ENGLISH, "--no-system-audio", "--microphone", sound.MICROPHONE)
            self._over.wait(self._some_seconds(1.5, 5))
            process.send_signal(signal.SIGINT)
            self._finish(process)

    def _salvage_again_and_again(self):
        while not self._over.wait(self._some_seconds(0.1, 1)):
            self._finish(self._start(False, "recover"))

    def _kill_now_and_then(self):
        while not self._over.wait(self._some_seconds(0.2, 2)):
            with self._mutex:
                victim = self._random.choice(self._running) if self._running else None
            if victim:
                victim.kill()

    def _account(self):
        held = collections.Counter()
        temporary = [*self._kept.iterdir(), *recorder.temporary_files(self._folder)]
        for path in temporary:
            data = path.read_bytes()
            if min(whole_frames(data).values(), default=0) > 0:
                held[hashlib.sha256(packets(data)).digest()] += 1
        finals = [path for path in self._folder.glob("*.m4a") if not path.name.endswith(".exporting.m4a")]
        saved = collections.Counter(hashlib.sha256(packets(path.read_bytes())).digest() for path in finals)
        kills = sum(ended.status in KILLED for ended in self._ended)
        twice = saved - held
        problems = [f"{path.name} does not decode" for path in finals if not decodes(path)]
        lost = sum((held - saved).values())
        if lost:
            problems.append(f"{lost} of {held.total()} recordings are lost")
        problems += [f"{path.name} is of no recording{nearest(path, temporary)}" for path in finals
                     if hashlib.sha256(packets(path.read_bytes())).digest() not in held]
        # A death between naming the final file and removing the temporary one leaves both.
        if twice.total() > kills:
            problems.append(f"{twice.total()} were saved twice, though only {kills} processes were killed")
        problems += self._problems_of_what_was_told()
        recordings = sum(ended.is_recorder and ended.status == 0 for ended in self._ended)
        return problems, (f"{held.total()} recordings with sound, {recordings} of them by recorders that ended well; "
                          f"{kills} processes killed; {len(finals)} final files, {twice.total()} of them a second time")

    def _problems_of_what_was_told(self):
        problems = []
        told = collections.Counter()
        for ended in self._ended:
            if ended.status in KILLED:
                continue
            paths = ended.output.splitlines()
            told.update(paths)
            problems += [f"{path} was printed, and is not there" for path in paths if not Path(path).is_file()]
            if ended.status != 0 and not ended.errors.strip():
                problems.append(f"status {ended.status} without a word")
            if ended.is_recorder and ended.status == 0 and len(paths) != 1:
                problems.append(f"a recording ended well with {len(paths)} files")
        return problems + [f"{path} was printed {times} times" for path, times in told.items() if times > 1]


def nearest(final, temporary):
    """Which temporary files begin with the same sound, for whoever looks for the cause."""
    sound_ = packets(final.read_bytes())
    contents = {path: path.read_bytes() for path in temporary}
    return "".join(
        f"; {path.name} begins alike: {len(packets(data))} bytes of sound instead of {len(sound_)}, "
        f"{whole_frames(data)} frames in whole fragments, {len(data)} bytes in all"
        for path, data in contents.items() if packets(data)[:1000] == sound_[:1000])


def decodes(path):
    result = subprocess.run(["ffmpeg", "-v", "error", "-i", str(path), "-f", "null", "-"],
                            stdin=subprocess.DEVNULL, capture_output=True, check=False)
    return result.returncode == 0 and not result.stderr


def soak(minutes, seed):
    """What is wrong, and a line with the counts."""
    seconds = 60 * minutes
    place = Path(tempfile.mkdtemp(prefix="vantoro-soak-"))
    try:
        noise = place / "noise.wav"
        subprocess.run(["sox", "-q", "-D", "-n", "-r", str(sound.RATE), "-c", "1", "-b", "16", str(noise),
                        "synth", str(seconds + 60), "whitenoise", "vol", "0.3"], check=True)
        with sound.Playing("--file", noise, "--into", sound.MICROPHONE):
            return Soak(place, seconds, seed).run()
    finally:
        shutil.rmtree(place)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--minutes", type=float, default=10)
    parser.add_argument("--seed", type=int, default=int(time.time()), help="of the random moments (default: random)")
    arguments = parser.parse_args()
    problems, summary = soak(arguments.minutes, arguments.seed)
    print(f"{summary}; seed {arguments.seed}")
    for problem in problems:
        print(problem)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())

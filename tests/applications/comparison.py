# SPDX-License-Identifier: GPL-3.0-or-later
"""Records while an application plays, and captures the output's monitor with another program at the same time."""

import array
import contextlib
import os
import signal
import subprocess
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "recording"))

import bursts  # noqa: E402
import measuring  # noqa: E402
import recorder  # noqa: E402
import sound  # noqa: E402

SIDES = ("FL", "FR")
SECONDS_TO_END = 5
SECONDS_TO_PLAY = 60
ATTEMPTS = 3


class Monitor:
    """Captures what some outputs play, from when it is ready until it is stopped."""

    def __init__(self, outputs, folder):
        self._outputs = outputs
        self._name = "captured-monitor"
        self.path = Path(folder) / f"{self._name}.wav"
        channels = range(len(outputs) * len(SIDES))
        self._process = subprocess.Popen(
            ["pw-record", "--target", "0", "--format", "f32", "--rate", str(sound.RATE),
             "--channels", str(len(channels)), "--channel-map", ",".join(f"AUX{channel}" for channel in channels),
             "-P", f'{{ node.name = "{self._name}" }}', str(self.path)])
        try:
            sound.wait_for_input_port(f"{self._name}:input_AUX{channels[-1]}")
            for output in outputs:
                self.attach(output)
        except BaseException:
            self.stop()
            raise

    def attach(self, output):
        """Captures an output; also again, after the output vanished and came back."""
        first = self._outputs.index(output) * len(SIDES)
        for channel, side in enumerate(SIDES, first):
            link(f"{output}:monitor_{side}", f"{self._name}:input_AUX{channel}")

    def heard(self):
        """The two channels of all outputs together, after the stop."""
        channels = sound.decoded(self.path)
        return [array.array("f", map(sum, zip(*channels[side::len(SIDES)]))) for side in range(len(SIDES))]

    def wait_for_seconds(self, seconds):
        """Returns after capturing this many more seconds, of sound or silence."""
        def has_grown(*_):
            return self.path.stat().st_size >= enough

        enough = self.path.stat().st_size + seconds * sound.RATE * len(self._outputs) * len(SIDES) * 4
        watch = recorder.FolderWatch(self.path.parent)
        try:
            watch.wait_for(has_grown, SECONDS_TO_PLAY)
        finally:
            watch.close()

    def stop(self):
        if self._process.poll() is None:
            self._process.send_signal(signal.SIGINT)  # completes the file's header
            self._process.wait(SECONDS_TO_END)


class Stage:
    """What an application needs to play: a sound, a folder, and the end of every process that it started."""

    def __init__(self, folder, lengths=bursts.BURSTS, sides=(bursts.LEFT, bursts.RIGHT)):
        self.folder = Path(folder)
        self.lengths = lengths
        self.sides = sides
        self.monitor = None  # while the application is recorded
        self.extra = None  # an output that appears and vanishes
        self._ending = contextlib.ExitStack()
        self.log = self._ending.enter_context(open(self.folder / "applications.log", "w+"))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._ending.close()

    def sound(self, channels=2, rate=sound.RATE, lead=True):
        """The bursts as a sound file; with more than two channels, only the first two have sound."""
        path = self.folder / f"bursts-{channels}-{rate}-{lead}.wav"
        if not path.exists():
            sides = (self.sides + ((),) * channels)[:channels]
            bursts.write(path, sides, self.lengths, rate, bursts.LEAD if lead else 0)
        return str(path)

    def start(self, *command, environment=None, **options):
        """Starts a process that ends with the stage."""
        process = subprocess.Popen(list(map(str, command)), env={**os.environ, **(environment or {})}, text=True,
                                   **{"stdin": subprocess.DEVNULL, "stdout": self.log, "stderr": self.log, **options})
        self._ending.callback(end, process)
        return process

    def run(self, *command, environment=None):
        """Runs a process that ends after playing."""
        self.wait_for_end(self.start(*command, environment=environment))

    def wait_for_end(self, process):
        if process.wait(SECONDS_TO_PLAY) != 0:
            raise AssertionError(f"{process.args[0]} ended with {process.returncode}: {self.said()}")

    def said(self):
        self.log.seek(0)
        return self.log.read()[-2000:].strip()

    def speak(self):
        """Plays the bursts into the microphone."""
        self.wait_for_end(self.start(sound.ROOT / "tools/play-test-sound", "--file", self.sound(channels=1),
                                     "--amplitude", bursts.LOUDEST, "--into", sound.MICROPHONE))

    def at_the_end(self, function, *arguments, **keywords):
        self._ending.callback(function, *arguments, **keywords)


def end(process):
    if process.poll() is None:
        process.terminate()
        try:
            process.wait(SECONDS_TO_END)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()


def link(output_port, input_port):
    subprocess.run(["pw-link", output_port, input_port], check=True, capture_output=True)
    sound.wait_for_link(output_port, input_port)


def record_with_monitor(stage, application):
    """The channels of the monitor and of the recording while an application plays."""
    application.prepare(stage)
    monitor = stage.monitor = Monitor(application.outputs, stage.folder)
    stage.at_the_end(monitor.stop)
    recording = recorder.Recording(stage.folder / "recordings", "--no-microphone", "--system-volume", 1)
    try:
        recording.wait_until_written()
        application.play(stage)
    finally:
        result = recording.stop()
        monitor.stop()
    return monitor.heard(), sound.decoded(result.saved())


def compare(stage, application):
    return measuring.compare(*record_with_monitor(stage, application), application.tones_on(stage))


def compare_fairly(application, *options):
    """The difference, its faults and the number of attempts. A busy machine sometimes causes dropouts, so a
    faulty recording is repeated, and a message says so."""
    for attempt in range(1, ATTEMPTS + 1):
        try:
            with tempfile.TemporaryDirectory(prefix="vantoro-played-") as folder, Stage(folder, *options) as stage:
                difference = compare(stage, application)
        except (AssertionError, measuring.NothingPlayed, OSError, subprocess.SubprocessError) as error:
            if attempt == ATTEMPTS:
                raise
            print(f"{application.name}, attempt {attempt}: {error}", file=sys.stderr, flush=True)
            continue
        faults = measuring.faults(difference, application.keeps_time)
        if not faults:
            break
        print(f"{application.name}, attempt {attempt}: {', '.join(faults)}: {difference}", file=sys.stderr, flush=True)
    return difference, faults, attempt

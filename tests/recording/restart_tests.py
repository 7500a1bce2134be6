#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The session manager or the PulseAudio server restarts during a recording: no sound is lost."""

import contextlib
import os
import signal
import socket
import subprocess
import sys
from pathlib import Path

sys.dont_write_bytecode = True

import pulses  # noqa: E402
import recorder  # noqa: E402
import sound  # noqa: E402
from case import RecordingCase, main  # noqa: E402
from sound import FIRST_OUTPUT, MICROPHONE, tone  # noqa: E402

LEVEL = 0.25 * 0.9  # of a tone from an output
SPOKEN = 0.5  # the level of a card's own tone


class Daemon:
    """A daemon of the session that is ended and restarted, as a service manager does."""

    def __init__(self, case, name):
        self._case = case
        self._name = name
        keeper = Path(f"/proc/{os.environ['VANTORO_SESSION_PIPEWIRE_PID']}/stat").read_text().rpartition(")")[2].split()[1]
        found = subprocess.run(["pgrep", "-P", keeper, "-x", name], check=True, capture_output=True, text=True)
        self._pid = int(found.stdout)

    def end(self, number):
        ended = os.pidfd_open(self._pid)
        os.kill(self._pid, number)
        recorder.wait_until_readable(ended, 10)
        os.close(ended)

    def start(self, listen=None):
        """Starts it with its listening socket, as a service manager does, so that clients need not wait."""
        script = f"LISTEN_PID=$$ exec {self._name}"
        environment = dict(os.environ)
        descriptors = ()
        with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as listener:
            if listen:
                listen.unlink(missing_ok=True)
                listener.bind(str(listen))
                listener.listen()
                descriptors = (listener.fileno(),)
                script += f" 3<&{listener.fileno()}"
                environment["LISTEN_FDS"] = "1"
            process = subprocess.Popen(["sh", "-c", script], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL, pass_fds=descriptors, env=environment)
        self._case.addCleanup(process.wait)
        self._case.addCleanup(process.kill)


class Restart(RecordingCase):
    def assert_heard(self, samples, frequency, level, begin=0.2, end=None):
        """The tone is steady, except where a busy machine delays the player."""
        end = len(samples) / sound.RATE - 0.2 if end is None else end
        levels = sound.amplitudes(samples, frequency, begin, end)
        whole = sum(measured > 0.8 * level for measured in levels)
        self.assertGreater(whole, 0.9 * len(levels), f"{frequency} Hz: {levels}")

    def span_of(self, samples, frequency, level):
        """When a tone begins and ends, in seconds."""
        there = [index / 10 for index, measured in enumerate(sound.amplitudes(samples, frequency))
                 if measured > 0.8 * level]
        return (there[0], there[-1]) if there else (0, 0)

    def restart_the_session_manager(self, number):
        """As with sound cards: they go with the session manager and come back as new objects."""
        manager = Daemon(self, "wireplumber")
        with contextlib.ExitStack() as players, contextlib.ExitStack() as cards:
            cards.enter_context(pulses.output("card", 0))
            cards.enter_context(pulses.microphone("card-microphone", 0, heard=300))
            before = players.enter_context(tone(440, "--channels", 1, "--to", "card"))
            sound.wait_for_link(f"{before.name}:output_MONO", "card:playback_MONO")
            recording = recorder.Recording(self.folder, "--microphone", "card-microphone")
            recording.watch.wait_for_fragments(2)
            manager.end(number)
            cards.close()
            # A service manager takes a moment too. The session manager would wait for nodes that still run.
            sound.wait_until_gone("vantoro.system-audio")
            manager.start()
            cards.enter_context(pulses.microphone("card-microphone", 0, heard=300))
            # It then looks for sound cards, and connects players to the existing output.
            if not sound.is_linked_before_it_ends(before, f"{before.name}:output_FL", f"{FIRST_OUTPUT}:playback_FL"):
                # Seen before any output is ready, a player is told that there is none, and gives up.
                players.enter_context(tone(440, "--channels", 1, "--to", FIRST_OUTPUT))
            cards.enter_context(pulses.output("card", 0))
            with tone(1000, "--channels", 1, "--to", "card", seconds=4) as after:
                after.wait(30)
            result = recording.stop()
        self.assertEqual(result.errors, "")
        return sound.decoded(result.saved())[0]

    def assert_all_is_heard_again(self, samples):
        seconds = len(samples) / sound.RATE
        begin, end = self.span_of(samples, 1000, LEVEL)
        self.assertGreater(end - begin, 3)
        for frequency, level in ((440, LEVEL), (300, SPOKEN)):
            self.assert_heard(samples, frequency, level, 0.5, 10)
            self.assert_heard(samples, frequency, level, begin + 0.5, end - 0.5)
        # Silent while the microphone is away, no longer than the recorder waits for it.
        self.assertLess(sound.longest_silence(samples[:round(end * sound.RATE)], 300, SPOKEN / 2), 5)
        self.assertGreater(seconds, 14)

    def test_sessionManagerThatIsKilledAndStartedAgainCostsNothing(self):
        self.assert_all_is_heard_again(self.restart_the_session_manager(signal.SIGKILL))

    def test_sessionManagerThatIsEndedAndStartedAgainCostsNothing(self):
        self.assert_all_is_heard_again(self.restart_the_session_manager(signal.SIGTERM))

    def restart_the_pulse_server(self, number):
        server = Daemon(self, "pipewire-pulse")
        with tone(440, "--pulse"), tone(600), tone(300, "--into", MICROPHONE):
            recording = recorder.Recording(self.folder)
            recording.watch.wait_for_fragments(1)
            server.end(number)
            recording.watch.wait_for_fragments(1)
            server.start(Path(os.environ["XDG_RUNTIME_DIR"]) / "pulse/native")
            with tone(1000, "--pulse", seconds=4) as after:
                after.wait(30)
            result = recording.stop()
        self.assertEqual(result.errors, "")
        left = sound.decoded(result.saved())[0]
        for frequency, level in ((600, LEVEL), (300, 0.25)):
            self.assert_heard(left, frequency, level)
        begin, end = self.span_of(left, 1000, LEVEL)
        self.assertGreater(begin, 8)
        self.assertGreater(end - begin, 3)

    def test_pulseServerThatIsKilledAndStartedAgainCostsNothing(self):
        self.restart_the_pulse_server(signal.SIGKILL)

    def test_pulseServerThatIsEndedAndStartedAgainCostsNothing(self):
        self.restart_the_pulse_server(signal.SIGTERM)


if __name__ == "__main__":
    main(Restart)

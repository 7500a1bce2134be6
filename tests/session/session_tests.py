#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""tools/session provides a desktop that is ready, passes the exit status on, and leaves nothing behind."""

import json
import os
import signal
import subprocess
import sys
import unittest
from pathlib import Path

TOOLS = Path(__file__).resolve().parents[2] / "tools"
SESSION = TOOLS / "session"
DEADLINE = 60


def run_in_session(script, *options, **keywords):
    return subprocess.run(
        [SESSION, *options, "--", "sh", "-c", script], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
        stderr=subprocess.PIPE, text=True, timeout=DEADLINE, check=False, **keywords)


class StartedSession:
    """A session whose command has printed its runtime folder and waits."""

    def __init__(self, command):
        self.process = subprocess.Popen(
            [SESSION, "--", "sh", "-c", f"echo $XDG_RUNTIME_DIR; {command}"],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
        self.runtime = self.process.stdout.readline().strip()

    def wait_until_all_has_ended(self):
        # The output ends after the last process that could write to it.
        self.process.communicate(timeout=DEADLINE)
        return self.process.returncode


def processes_that_know(text):
    found = []
    for environment in Path("/proc").glob("[0-9]*/environ"):
        try:
            if text.encode() in environment.read_bytes():
                found.append(environment.parent.name)
        except OSError:
            continue
    return found


class SessionTests(unittest.TestCase):
    def assert_nothing_is_left(self, runtime):
        self.assertTrue(runtime.startswith("/tmp/vantoro-session-"), runtime)
        self.assertFalse(Path(runtime).parent.exists())
        self.assertEqual(processes_that_know(runtime), [])

    def test_bothOutputsAndTheMicrophoneAreThereWhenTheCommandStarts(self):
        result = run_in_session("pw-dump")
        nodes = {}
        for thing in json.loads(result.stdout):
            properties = thing.get("info", {}).get("props", {})
            if properties.get("node.name", "").startswith("vantoro-"):
                nodes[properties["node.name"]] = (properties["media.class"], properties["node.description"])
        self.assertEqual(nodes, {
            "vantoro-output-1": ("Audio/Sink", "Output 1"),
            "vantoro-output-2": ("Audio/Sink", "Output 2"),
            "vantoro-microphone": ("Audio/Source/Virtual", "Virtual Microphone"),
        })

    def test_theFirstOutputAndTheMicrophoneAreTheDefaults(self):
        lines = run_in_session("pw-metadata 0").stdout.splitlines()
        for key, name in (("sink", "vantoro-output-1"), ("source", "vantoro-microphone")):
            self.assertTrue(any(f"default.audio.{key}'" in line and name in line for line in lines), lines)

    def test_programsThatSpeakPulseAudiosProtocolFindTheSameDefaults(self):
        result = run_in_session("pactl get-default-sink; pactl get-default-source")
        self.assertEqual(result.stdout.split(), ["vantoro-output-1", "vantoro-microphone"])

    def test_exitStatusIsPassedOn(self):
        self.assertEqual(run_in_session("exit 0").returncode, 0)
        self.assertEqual(run_in_session("exit 7").returncode, 7)
        self.assertEqual(run_in_session("kill -KILL $$").returncode, 128 + signal.SIGKILL)

    def test_aCommandThatDoesNotExistIsStatus127(self):
        result = subprocess.run([SESSION, "--", "/no/such/program"], capture_output=True, text=True,
                                timeout=DEADLINE, check=False)
        self.assertEqual(result.returncode, 127)
        self.assertIn("/no/such/program", result.stderr)

    def test_onlyTheCommandPrints(self):
        result = run_in_session("echo out; echo err >&2")
        self.assertEqual((result.stdout, result.stderr), ("out\n", "err\n"))

    def test_nothingOfAnOuterDesktopIsSeen(self):
        outer = dict(os.environ, PIPEWIRE_REMOTE="outer", PULSE_SERVER="outer", DISPLAY=":99",
                     WAYLAND_DISPLAY="outer", XDG_CURRENT_DESKTOP="outer", DBUS_SESSION_BUS_ADDRESS="outer")
        result = run_in_session("env | grep -w -e outer -e :99; pw-cli info 0 | grep -c cookie", env=outer)
        self.assertEqual(result.stdout, "1\n")

    def test_nothingIsLeftAfterTheCommandEnds(self):
        session = StartedSession("setsid sleep 1000 & exit 3")
        self.assertEqual(session.wait_until_all_has_ended(), 3)
        self.assert_nothing_is_left(session.runtime)

    def test_nothingIsLeftAfterTheDaemonWasKilled(self):
        session = StartedSession("kill -KILL $VANTORO_SESSION_PIPEWIRE_PID")
        self.assertEqual(session.wait_until_all_has_ended(), 0)
        self.assert_nothing_is_left(session.runtime)

    def test_nothingIsLeftAfterTheDaemonWasFrozen(self):
        session = StartedSession("kill -STOP $VANTORO_SESSION_PIPEWIRE_PID")
        self.assertEqual(session.wait_until_all_has_ended(), 0)
        self.assert_nothing_is_left(session.runtime)

    def test_aSignalReachesTheCommandAndNothingIsLeft(self):
        for number in (signal.SIGINT, signal.SIGTERM):
            # The command decides what the signal means: a recorder first saves.
            session = StartedSession("trap 'exit 42' INT TERM; sleep 1000 & echo ready; wait")
            session.process.stdout.readline()
            session.process.send_signal(number)
            self.assertEqual(session.wait_until_all_has_ended(), 42)
            self.assert_nothing_is_left(session.runtime)

    def test_nothingIsLeftAfterTheSessionWasKilled(self):
        session = StartedSession("setsid sleep 1000 & sleep 1000")
        session.process.kill()
        session.wait_until_all_has_ended()
        self.assert_nothing_is_left(session.runtime)

    def test_severalSessionsRunSideBySide(self):
        sessions = [StartedSession("read line < /dev/null; pw-cli info 0 | grep cookie") for _ in range(3)]
        cookies = {session.process.communicate(timeout=DEADLINE)[0] for session in sessions}
        self.assertEqual(len(cookies), 3)

    def test_aScreenHasAWindowManager(self):
        script = "test -n \"$DISPLAY\" && xdotool get_num_desktops"
        self.assertEqual(run_in_session(script, "--screen").returncode, 0)
        self.assertEqual(run_in_session("echo $DISPLAY").stdout, "\n")

    def test_cyclesAreLongOnlyOnRequest(self):
        script = "pw-metadata -n settings 0 clock.min-quantum"
        self.assertIn("value:'4096'", run_in_session(script, "--long-cycles").stdout)
        self.assertNotIn("value:'4096'", run_in_session(script).stdout)

    def test_whatIsFedIntoTheMicrophoneIsHeard(self):
        script = f"""
            mkfifo $HOME/linked
            {TOOLS}/play-test-sound --tone 300 --amplitude 0.5 --seconds 30 --into vantoro-microphone > $HOME/linked &
            read linked < $HOME/linked
            timeout --signal=INT 5 pw-cat -r --target vantoro-microphone --channels 1 $HOME/heard.wav
            sox $HOME/heard.wav -n stat 2>&1"""
        statistics = dict(line.split(":", 1) for line in run_in_session(script).stdout.splitlines()
                          if line.count(":") == 1)
        self.assertAlmostEqual(float(statistics["Maximum amplitude"]), 0.5, delta=0.01)
        self.assertAlmostEqual(float(statistics["Rough   frequency"]), 300, delta=60)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *(f"SessionTests.test_{name}" for name in sys.argv[1:])])

# SPDX-License-Identifier: GPL-3.0-or-later
"""Test sounds for comparing recorders: music on an output, and somebody speaking."""

import subprocess
from pathlib import Path

OUTPUT, MICROPHONE = "vantoro-output-1", "vantoro-microphone"
_PLAYER = Path(__file__).resolve().parents[2] / "tools/play-test-sound"
_SPEECH = ("What cannot be said twice should be recorded once, and well: a meeting, a lecture, a promise, "
           "the first words of a child, the last ones of an old friend. ")


class Sounds:
    """Plays for some seconds, or until the end of `with`; the output's channels are identical, as in a call, or
    different, as in music."""

    def __init__(self, seconds, stereo, folder):
        output = ["--chord", "220,277.18,329.63,440", "--seconds", str(seconds)]
        if stereo:
            file = f"{folder}/stereo.wav"
            subprocess.run(["sox", "-q", "-D", "-n", "-r", "48000", "-c", "2", "-b", "16", file, "synth", "2",
                            "pluck", "220", "pluck", "329.63", "fade", "0", "2", "0.3", "repeat", str(seconds // 2)],
                           check=True)
            output = ["--file", file]
        self._players = [
            subprocess.Popen([_PLAYER, *output, "--to", OUTPUT]),
            subprocess.Popen([_PLAYER, "--say", _SPEECH * (1 + seconds // 8), "--into", MICROPHONE],
                             stdout=subprocess.PIPE),
        ]

    def __enter__(self):
        self._players[1].stdout.readline()  # printed once the microphone receives the sound
        return self

    def __exit__(self, *_):
        for player in self._players:
            player.kill()
            player.communicate()

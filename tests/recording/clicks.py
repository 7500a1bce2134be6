# SPDX-License-Identifier: GPL-3.0-or-later
"""Plays clicks to an output and the microphone at the same instant, and finds them in a recording."""

import subprocess

import sound
from sound import FIRST_OUTPUT, MICROPHONE


class Clicks(sound.Playing):
    """Plays a short beep each second to the first output and into the microphone at once."""

    def __init__(self, folder, seconds=120):
        file = folder / "clicks.wav"
        subprocess.run(["sox", "-q", "-n", "-r", "48000", "-c", "1", "-b", "16", str(file), "synth", "0.05",
                        "sine", "2000", "vol", "0.5", "pad", "0", "0.95", "repeat", str(round(seconds))], check=True)
        super().__init__("--file", file, "--channels", 1, "--to", FIRST_OUTPUT)

    def __enter__(self):
        super().__enter__()
        # The stream has the channels of its output.
        subprocess.run(["pw-link", f"{self.name}:output_FL", f"{MICROPHONE}:input_MONO"], check=True)
        return self


def click_offsets(temporary_file):
    """For each click of the system track, its delay in the microphone track in seconds.

    Leaves out the first and the last click, which may be cut.
    """
    system, microphone = (sound.sounding(sound.decoded(temporary_file, track)[0], 0.05, block=48)
                          for track in (0, 1))
    return [min((span[0] - begin for span in microphone), key=abs) for begin, _ in system[1:-1]]

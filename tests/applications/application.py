# SPDX-License-Identifier: GPL-3.0-or-later
"""An application in the table, and how to make it play."""

import dataclasses
import typing

import sound


def prepare_sound(stage):
    stage.sound()


@dataclasses.dataclass(frozen=True)
class Application:
    name: str
    package: str  # the one whose version the table shows
    play: typing.Callable  # takes the stage; returns when the sound has ended
    prepare: typing.Callable = prepare_sound  # before the recording begins
    outputs: tuple = (sound.FIRST_OUTPUT,)  # those whose monitors together have what should be recorded
    has_one_channel: bool = False  # the same in both channels
    tones: tuple = ()  # of each channel, if the application plays its own sound
    keeps_time: bool = True  # false if the sound moves between outputs, whose latencies differ

    def tones_on(self, stage):
        return self.tones or (stage.sides[:1] * 2 if self.has_one_channel else stage.sides)

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
    package: str  # whose version is told
    play: typing.Callable  # with the stage; the sound has ended when it returns
    prepare: typing.Callable = prepare_sound  # before the recording begins
    outputs: tuple = (sound.FIRST_OUTPUT,)  # whose monitors have together what should be recorded
    has_one_channel: bool = False  # which both sides have
    tones: tuple = ()  # of each side, where it plays another sound than ours
    keeps_time: bool = True  # not where it goes from one output to another, which need not be equally fast

    def tones_on(self, stage):
        return self.tones or (stage.sides[:1] * 2 if self.has_one_channel else stage.sides)

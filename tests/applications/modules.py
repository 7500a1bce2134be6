# SPDX-License-Identifier: GPL-3.0-or-later
"""Nodes that pass sound on: modules of the PulseAudio server, loopbacks, and links that a user creates."""

import subprocess

import sound
from application import Application
from comparison import link
from sound import FIRST_OUTPUT, MICROPHONE, SECOND_OUTPUT

VIRTUAL = "virtual-output"


def load(*module):
    """Loads a module for the lifetime of the stage."""
    def prepare(stage):
        stage.sound()
        number = subprocess.run(["pactl", "load-module", *module], check=True, capture_output=True, text=True).stdout
        stage.at_the_end(subprocess.run, ["pactl", "unload-module", number.strip()])
    return prepare


def load_loopback(stage):
    load("module-loopback", f"source={SECOND_OUTPUT}.monitor", f"sink={FIRST_OUTPUT}",
         "sink_input_properties=node.name=behind")(stage)
    sound.wait_for_link("behind:output_FL", f"{FIRST_OUTPUT}:playback_FL")


def start_pw_loopback(*arguments):
    def prepare(stage):
        stage.sound()
        stage.start("pw-loopback", "--playback", FIRST_OUTPUT, "--playback-props", "node.name=behind", *arguments)
        sound.wait_for_link("behind:output_FL", f"{FIRST_OUTPUT}:playback_FL")
    return prepare


def play_to(output):
    def play(stage):
        stage.run("pw-play", "--target", output, stage.sound())
    return play


def play_into_microphone(stage):
    """The one channel plays on both channels of the output."""
    for side in ("FL", "FR"):
        ports = [f"{MICROPHONE}:capture_MONO", f"{FIRST_OUTPUT}:playback_{side}"]
        link(*ports)
        stage.at_the_end(subprocess.run, ["pw-link", "--disconnect", *ports])
    stage.speak()


LIGHT = (
    Application("module-loopback, from an output's monitor", "pipewire-pulse", play_to(SECOND_OUTPUT), load_loopback,
                outputs=(SECOND_OUTPUT,)),
    Application("module-combine-sink, of both outputs", "pipewire-pulse", play_to(VIRTUAL),
                load("module-combine-sink", f"sink_name={VIRTUAL}", f"slaves={FIRST_OUTPUT},{SECOND_OUTPUT}")),
    Application("module-remap-sink", "pipewire-pulse", play_to(VIRTUAL),
                load("module-remap-sink", f"sink_name={VIRTUAL}", f"master={FIRST_OUTPUT}", "remix=no")),
    Application("pw-loopback, as an output", "pipewire-bin", play_to(VIRTUAL),
                start_pw_loopback("--capture-props", f"media.class=Audio/Sink node.name={VIRTUAL}")),
    Application("pw-loopback, from an output's monitor", "pipewire-bin", play_to(SECOND_OUTPUT),
                start_pw_loopback("--capture", SECOND_OUTPUT, "--capture-props", "stream.capture.sink=true"),
                outputs=(SECOND_OUTPUT,)),
    Application("a microphone linked to an output", "pipewire-bin", play_into_microphone,
                prepare=lambda stage: stage.sound(channels=1), has_one_channel=True),
)

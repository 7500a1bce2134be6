# SPDX-License-Identifier: GPL-3.0-or-later
"""Changes to applications and outputs during a recording."""

import json
import subprocess

import sound
from application import Application
from modules import play_to
from sound import FIRST_OUTPUT, SECOND_OUTPUT

PLAYER = "test-player"
EXTRA = "headset-output"
EXTRA_MICROPHONE = "headset-microphone"
SECONDS_BEFORE = 2
EIGHT_CHANNELS = "front-left,front-right,front-center,lfe,rear-left,rear-right,side-left,side-right"


def start_player(stage, *options, lead=True):
    player = stage.start("pw-play", "-P", f'{{ node.name = "{PLAYER}" }}', *options, stage.sound(lead=lead))
    sound.wait_for_output_ports(PLAYER)
    return player


def play_at_once(*command):
    def play(stage):
        stage.run(*command, stage.sound(lead=False))
    return play


def play_and_end_in_the_middle(stage):
    player = start_player(stage)
    stage.monitor.wait_for_seconds(SECONDS_BEFORE)
    player.kill()
    player.wait()
    stage.monitor.wait_for_seconds(1)


def move(player, output):
    """Moves a stream as a mixer does."""
    nodes = json.loads(subprocess.run(["pw-dump", "Node"], check=True, capture_output=True, text=True).stdout)
    node = next(node["id"] for node in nodes if node["info"]["props"].get("node.name") == player)
    subprocess.run(["pw-metadata", str(node), "target.object", output], check=True, stdout=subprocess.DEVNULL)
    sound.wait_for_link(f"{player}:output_FL", f"{output}:playback_FL")


def play_and_move(stage):
    player = start_player(stage, "--target", FIRST_OUTPUT)
    stage.monitor.wait_for_seconds(SECONDS_BEFORE)
    move(PLAYER, SECOND_OUTPUT)
    stage.wait_for_end(player)


class Device:
    """An output or a microphone that appears and vanishes."""

    def __init__(self, stage, name, *properties):
        self._arguments = ["module-null-sink", f"sink_name={name}", *properties]
        self._number = None
        stage.at_the_end(self.remove)
        self.add()

    def add(self):
        loaded = subprocess.run(["pactl", "load-module", *self._arguments], check=True, capture_output=True, text=True)
        self._number = loaded.stdout.strip()

    def remove(self):
        if self._number:
            subprocess.run(["pactl", "unload-module", self._number], check=True)
            self._number = None


def output(stage, name, *properties):
    device = Device(stage, name, *properties)
    sound.wait_for_output_ports(name)  # the monitor's ports
    return device


def microphone(stage, name):
    device = Device(stage, name, "media.class=Audio/Source/Virtual", "channel_map=mono")
    sound.wait_for_output_ports(name)
    return device


def add_extra_output(stage):
    stage.sound()
    stage.extra = output(stage, EXTRA)


def add_surround_output(stage):
    """Adds an output on whose rear channels the sound server also plays a stereo sound, a little later."""
    stage.sound()
    output(stage, EXTRA, f"channel_map={EIGHT_CHANNELS}")


def play_while_the_output_is_gone(stage):
    """Meanwhile, the session manager moves the sound to the default output."""
    player = start_player(stage, "--target", EXTRA)
    sound.wait_for_link(f"{PLAYER}:output_FL", f"{EXTRA}:playback_FL")
    stage.monitor.wait_for_seconds(SECONDS_BEFORE)
    stage.extra.remove()
    sound.wait_for_link(f"{PLAYER}:output_FL", f"{FIRST_OUTPUT}:playback_FL")
    stage.monitor.wait_for_seconds(SECONDS_BEFORE)
    stage.extra.add()
    sound.wait_for_output_ports(EXTRA)
    stage.monitor.attach(EXTRA)
    move(PLAYER, EXTRA)
    stage.wait_for_end(player)


LIGHT = (
    Application("a stereo sound on an output of eight channels", "pipewire-bin", play_to(EXTRA), add_surround_output,
                outputs=(EXTRA,)),
    Application("a sound that begins at once, PulseAudio", "pulseaudio-utils", play_at_once("paplay"),
                prepare=lambda stage: stage.sound(lead=False)),
    Application("a sound that begins at once, PipeWire", "pipewire-bin", play_at_once("pw-play"),
                prepare=lambda stage: stage.sound(lead=False)),
    Application("a player that is killed", "pipewire-bin", play_and_end_in_the_middle),
    Application("a player that is moved to another output", "pipewire-bin", play_and_move,
                outputs=(FIRST_OUTPUT, SECOND_OUTPUT), keeps_time=False),
    Application("an output that vanishes and comes back", "pipewire-bin", play_while_the_output_is_gone,
                add_extra_output, outputs=(FIRST_OUTPUT, EXTRA), keeps_time=False),
)

# SPDX-License-Identifier: GPL-3.0-or-later
"""JACK clients. Only they and the user create their links, so they reach an output without the session manager."""

import re
import subprocess

import sound
from application import Application, prepare_sound
from comparison import link

OUTPUT = [f"{sound.FIRST_OUTPUT}:playback_{side}" for side in ("FL", "FR")]
TICK = 880
TICKING_SECONDS = 6


def keep_cycles(stage):
    """GStreamer's client fails if cycles get longer while it starts, which any player can cause."""
    stage.sound()
    settings = ["pw-metadata", "-n", "settings", "0"]
    told = subprocess.run([*settings, "clock.quantum"], check=True, capture_output=True, text=True).stdout
    length = re.search(r"value:'(\d+)'", told)[1]
    subprocess.run([*settings, "clock.force-quantum", length], check=True, stdout=subprocess.DEVNULL)
    stage.at_the_end(subprocess.run, [*settings, "clock.force-quantum", "0"], stdout=subprocess.DEVNULL)


def play_into(stage, *inputs):
    """Runs a client that plays the bursts. It would find hardware by itself, but since PipeWire 1.4 no virtual output."""
    source = stage.start("pw-jack", "gst-launch-1.0", "-q", "filesrc", f"location={stage.sound()}", "!", "wavparse", "!",
                         "audioconvert", "!", "audioresample", "!", "jackaudiosink", "client-name=source", "connect=none")
    sound.wait_for_output_ports("source")
    for number, channel in enumerate(inputs, 1):
        link(f"source:out_jackaudiosink0_{number}", channel)
    stage.wait_for_end(source)


def play_with_gstreamer(stage):
    play_into(stage, *OUTPUT)


def play_with_mpv(stage):
    stage.run("pw-jack", "mpv", "--no-config", "--no-video", "--no-terminal", "--ao=jack", stage.sound())


def play_metronome(stage):
    """The metronome runs until it is ended, and by itself connects to one channel only."""
    stage.start("pw-jack", "jack_metro", "--name", "metronome", "--frequency", TICK, "--amplitude", "0.4",
                "--duration", 400, "--bpm", 60)
    sound.wait_for_output_ports("metronome")
    for side in OUTPUT:
        link("metronome:60_bpm", side)
    stage.monitor.wait_for_seconds(TICKING_SECONDS)


def play_through_filter(stage):
    """A client passes another client's sound on to the output."""
    stage.start("pw-jack", "ecasound", "-q", "-G:jack,filter,notransport", "-b:1024", "-f:f32,2,48000", "-i", "jack",
                "-o", "jack")
    sound.wait_for_output_ports("filter")
    for number, side in enumerate(OUTPUT, 1):
        link(f"filter:out_{number}", side)
    play_into(stage, "filter:in_1", "filter:in_2")


LIGHT = (
    Application("GStreamer, jackaudiosink", "gstreamer1.0-plugins-good", play_with_gstreamer, keep_cycles),
    Application("a JACK client through another (ecasound)", "ecasound", play_through_filter, keep_cycles),
)
HEAVY = (
    Application("jack_metro", "jackd2", play_metronome, prepare=lambda stage: None, tones=((TICK,), (TICK,))),
    Application("mpv, jack", "mpv", play_with_mpv, prepare=prepare_sound),
)

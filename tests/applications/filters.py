# SPDX-License-Identifier: GPL-3.0-or-later
"""Filters in front of an output. The recording has what was played to the filter."""

import array
import wave

import sound
from application import Application
from modules import VIRTUAL, play_to
from sound import FIRST_OUTPUT

SURROUND = ("FL", "FR", "FC", "LFE", "RL", "RR", "SL", "SR")
EASY_EFFECTS = "easyeffects_sink"


def run_module(name, arguments):
    """Runs one of the sound server's modules in a separate process, as its manual describes."""
    def prepare(stage):
        stage.sound()
        path = stage.folder / "module.conf"
        path.write_text(f"""
            context.properties = {{ log.level = 1 }}
            context.spa-libs = {{
                audio.convert.* = audioconvert/libspa-audioconvert
                support.* = support/libspa-support
                aec/libspa-aec-webrtc = aec/libspa-aec-webrtc
            }}
            context.modules = [
                {{ name = libpipewire-module-rt args = {{}} flags = [ ifexists nofail ] }}
                {{ name = libpipewire-module-protocol-native }}
                {{ name = libpipewire-module-client-node }}
                {{ name = libpipewire-module-adapter }}
                {{ name = {name} args = {{ {arguments(stage)} }} }}
            ]""")
        stage.start("pipewire", "-c", path)
        sound.wait_for_link("behind:output_FL", f"{FIRST_OUTPUT}:playback_FL")
    return prepare


def ends(before="audio.channels = 2 audio.position = [ FL FR ]", after="audio.channels = 2 audio.position = [ FL FR ]"):
    return (f"capture.props = {{ node.name = {VIRTUAL} media.class = Audio/Sink {before} }} "
            f"playback.props = {{ node.name = behind target.object = {FIRST_OUTPUT} {after} }}")


def flat_equalizer(_stage):
    return ("filter.graph = { nodes = [ { type = builtin label = bq_peaking name = band "
            f"control = {{ Freq = 1000 Q = 1 Gain = 0 }} }} ] }} {ends()}")


def virtual_surround(stage):
    """Each loudspeaker reaches both ears, the farther one later and more quietly."""
    response = write_response(stage.folder / "loudspeaker.wav")
    nodes, links, mixed = [], [], {"L": [], "R": []}
    for side in SURROUND:
        nodes.append(f"{{ type = builtin label = copy name = {side} }}")
        for ear, names in mixed.items():
            name = f"{side}-{ear}"
            farther = int(side[-1] in "LR" and side != "LFE" and side[-1] != ear)
            nodes.append(f'{{ type = builtin label = convolver name = "{name}" '
                         f'config = {{ filename = "{response}" channel = {farther} }} }}')
            links.append(f'{{ output = "{side}:Out" input = "{name}:In" }}')
            names.append(name)
    for ear, names in mixed.items():
        nodes.append(f"{{ type = builtin label = mixer name = {ear} }}")
        links += [f'{{ output = "{name}:Out" input = "{ear}:In {number}" }}' for number, name in enumerate(names, 1)]
    inputs = " ".join(f'"{side}:In"' for side in SURROUND)
    return (f'filter.graph = {{ nodes = [ {" ".join(nodes)} ] links = [ {" ".join(links)} ] inputs = [ {inputs} ] '
            f'outputs = [ "L:Out" "R:Out" ] }} '
            + ends(f'audio.channels = {len(SURROUND)} audio.position = [ {" ".join(SURROUND)} ]'))


def write_response(path):
    """The impulse response at the nearer and at the farther ear."""
    frames = array.array("h", bytes(4 * 128))
    frames[2 * 48] = 16384
    frames[2 * 67 + 1] = 5461
    with wave.open(str(path), "wb") as file:
        file.setparams((2, 2, sound.RATE, 0, "NONE", ""))
        file.writeframes(frames.tobytes())
    return path


def echo_cancellation(_stage):
    return (f"sink.props = {{ node.name = {VIRTUAL} }} playback.props = {{ node.name = behind "
            f"target.object = {FIRST_OUTPUT} }} capture.props = {{ target.object = {sound.MICROPHONE} }} "
            "library.name = aec/libspa-aec-webrtc")


def start_easy_effects(stage):
    stage.sound()
    stage.start("easyeffects", "--gapplication-service")
    sound.wait_for_link("ee_soe_output_level:output_FL", f"{FIRST_OUTPUT}:playback_FL")


HEAVY = (
    Application("filter-chain, a flat equalizer", "pipewire-bin", play_to(VIRTUAL),
                run_module("libpipewire-module-filter-chain", flat_equalizer)),
    Application("filter-chain, virtual surround", "pipewire-bin", play_to(VIRTUAL),
                run_module("libpipewire-module-filter-chain", virtual_surround), outputs=(VIRTUAL,)),
    Application("echo-cancel", "libspa-0.2-modules", play_to(VIRTUAL),
                run_module("libpipewire-module-echo-cancel", echo_cancellation)),
    Application("EasyEffects", "easyeffects", play_to("auto"), start_easy_effects),
)

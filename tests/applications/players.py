# SPDX-License-Identifier: GPL-3.0-or-later
"""Players of a sound file, through each of the sound server's interfaces."""

import os

from application import Application

NOBODY = 65534
AS_NOBODY = ("setpriv", f"--reuid={NOBODY}", "--securebits=+no_setuid_fixup", "--inh-caps=+dac_override",
             "--ambient-caps=+dac_override")


def player(name, package, *command, environment=None, channels=2, rate=48000):
    """A player that takes a file, and ends when it has played it."""
    def play(stage):
        path = stage.sound(channels, rate)
        stage.run(*(word.replace("FILE", path) for word in command), environment=environment)
    return Application(name, package, play, prepare=lambda stage: stage.sound(channels, rate),
                       has_one_channel=channels == 1)


def gstreamer(sink, package):
    return player(f"GStreamer, {sink}", package, "gst-launch-1.0", "-q", "filesrc", "location=FILE", "!", "wavparse",
                  "!", "audioconvert", "!", "audioresample", "!", sink)


def ffplay(driver):
    return player(f"ffplay, SDL's {driver}", "libsdl2-2.0-0", "ffplay", "-v", "error", "-nodisp", "-autoexit", "FILE",
                  environment={"SDL_AUDIODRIVER": driver})


def mpv(output):
    return player(f"mpv, {output}", "mpv", "mpv", "--no-config", "--no-video", "--no-terminal", f"--ao={output}",
                  "FILE")


def play_with_vlc(stage):
    """VLC refuses to run as root, so it runs as nobody, with access to root's files."""
    home = stage.folder / "home-of-nobody"
    home.mkdir()
    as_nobody = ()
    if os.geteuid() == 0:
        os.chown(home, NOBODY, -1)
        as_nobody = AS_NOBODY
    folders = ("HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME")
    server = f"unix:{os.environ['XDG_RUNTIME_DIR']}/pulse/native"
    stage.run(*as_nobody, "vlc", "--intf", "dummy", "--quiet", "--aout=pulse", "--play-and-exit", "--no-video",
              stage.sound(), environment={**dict.fromkeys(folders, str(home)), "PULSE_SERVER": server})


LIGHT = (
    player("aplay (ALSA)", "alsa-utils", "aplay", "-q", "FILE"),
    player("paplay (PulseAudio)", "pulseaudio-utils", "paplay", "FILE"),
    player("pw-play", "pipewire-bin", "pw-play", "FILE"),
    player("pw-play, mono", "pipewire-bin", "pw-play", "FILE", channels=1),
    player("pw-play, 8 kHz", "pipewire-bin", "pw-play", "FILE", rate=8000),
    player("pw-play, 5.1", "pipewire-bin", "pw-play", "FILE", channels=6),
    ffplay("pulseaudio"),
    ffplay("pipewire"),
    ffplay("alsa"),
    gstreamer("pipewiresink", "gstreamer1.0-pipewire"),
)
HEAVY = (
    gstreamer("pulsesink", "gstreamer1.0-pulseaudio"),
    gstreamer("alsasink", "gstreamer1.0-alsa"),
    *map(mpv, ("pipewire", "pulse", "alsa")),
    Application("VLC", "vlc-bin", play_with_vlc),
)

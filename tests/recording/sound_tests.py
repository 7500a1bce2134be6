#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The final file has the sound of the output and the microphone at its level, with its length, and in sync."""

import json
import subprocess
import sys

sys.dont_write_bytecode = True

import recorder  # noqa: E402
import sound  # noqa: E402
from case import RecordingCase, main  # noqa: E402
from clicks import Clicks, click_offsets  # noqa: E402
from sound import FIRST_OUTPUT, MICROPHONE, SECOND_OUTPUT, tone, usual_amplitude  # noqa: E402


def move(name, output):
    """Moves an application's sound to another output, as a mixer does."""
    nodes = json.loads(subprocess.run(["pw-dump", "Node"], check=True, capture_output=True, text=True).stdout)
    node = next(node["id"] for node in nodes if node["info"]["props"].get("node.name") == name)
    subprocess.run(["pw-metadata", str(node), "target.object", output], check=True, stdout=subprocess.DEVNULL)
    sound.wait_for_link(f"{name}:output_FL", f"{output}:playback_FL")


class Sound(RecordingCase):
    def test_twoOutputsAndTheMicrophoneAreInTheFileAtTheirGains(self):
        with tone(440, "--to", FIRST_OUTPUT), tone(1000, "--to", SECOND_OUTPUT), \
                tone(300, "--into", MICROPHONE):
            path = recorder.record(self.folder, "--seconds", 5).saved()
        self.assertRegex(path.name, r"^Vantoro-\d{4}-\d{2}-\d{2}-\d{6}\.m4a$")
        stream, = sound.probe(path)["streams"]
        self.assertEqual((stream["codec_name"], stream["sample_rate"], stream["channels"]), ("aac", "48000", 2))
        for channel in sound.decoded(path):
            self.assertGreater(len(channel) / sound.RATE, 4.85)
            self.assertLess(len(channel) / sound.RATE, 8)  # a busy machine ends it late
            for frequency, gain in ((440, 0.9), (1000, 0.9), (300, 1.0)):
                self.assert_decibels(usual_amplitude(channel, frequency, 1, 4), 0.25 * gain)

    def test_volumesOfTheCommandAreTheGainsOfTheMix(self):
        with tone(440), tone(300, "--into", MICROPHONE):
            path = recorder.record(self.folder, "--seconds", 3, "--system-volume", 0.25,
                                   "--microphone-volume", 2).saved()
        left, _ = sound.decoded(path)
        self.assert_decibels(usual_amplitude(left, 440, 1, 2.5), 0.25 * 0.25)
        self.assert_decibels(usual_amplitude(left, 300, 1, 2.5), 0.25 * 2)

    def test_sourceThatIsOffIsNotInTheFile(self):
        with tone(440), tone(300, "--into", MICROPHONE):
            for option, silent, heard in (("--no-system-audio", 440, 300), ("--no-microphone", 300, 440)):
                path = recorder.record(self.folder, "--seconds", 2, option).saved()
                left = sound.decoded(path)[0]
                self.assertLess(min(sound.amplitudes(left, silent, 0.5, 1.5)), 0.001, option)
                self.assertGreater(usual_amplitude(left, heard, 0.5, 1.5), 0.2, option)

    def test_applicationIsHeardForJustTheTimeThatItPlays(self):
        recording = recorder.Recording(self.folder, "--no-microphone")
        recording.wait_until_written()
        with tone(700, "--to", SECOND_OUTPUT, seconds=2) as player:
            player.wait(30)
        path = recording.stop().saved()
        spans = sound.sounding(sound.decoded(path)[0], 0.05)
        self.assertGreater(spans[0][0], 0.5)
        # In pieces, if a busy machine delayed the player.
        self.assertAlmostEqual(sum(end - begin for begin, end in spans), 2.0, delta=0.3)
        self.assertLess(spans[-1][1] - spans[0][0], 5)

    def test_applicationThatMovesToAnotherOutputStaysInTheFile(self):
        with tone(700, "--to", FIRST_OUTPUT) as player:
            recording = recorder.Recording(self.folder, "--no-microphone")
            recording.wait_until_written()
            move(player.name, SECOND_OUTPUT)
            # With the sound that marks the time after the move.
            with tone(1500, "--to", FIRST_OUTPUT, seconds=3) as marker:
                marker.wait(30)
            path = recording.stop().saved()
        for channel in sound.decoded(path):
            whole = 0.25 * 0.9
            marked = [index / 10 for index, level in enumerate(sound.amplitudes(channel, 1500)) if level > whole / 2]
            self.assertGreater(marked[-1] - marked[0], 2)
            for begin, end in ((0.2, 0.9), (marked[0] + 0.2, marked[-1] - 0.2)):
                self.assert_decibels(usual_amplitude(channel, 700, begin, end), whole)
            # Not twice; for a moment both outputs, with separate clocks, play it.
            louder = [level for level in sound.amplitudes(channel, 700) if level > 1.06 * whole]
            self.assertLessEqual(len(louder), 3, louder)
            self.assertLess(sound.longest_silence(channel, 700, whole / 2), 3)

    def test_monoStreamReachesBothChannelsAtFullLevel(self):
        with tone(440, "--channels", 1):
            path = recorder.record(self.folder, "--seconds", 3, "--no-microphone").saved()
        for channel in sound.decoded(path):
            self.assert_decibels(usual_amplitude(channel, 440, 1, 2.5), 0.25 * 0.9)

    def test_surroundStreamReachesBothChannels(self):
        with tone(440, "--channels", 6):
            path = recorder.record(self.folder, "--seconds", 3, "--no-microphone").saved()
        for channel in sound.decoded(path):
            self.assertGreater(usual_amplitude(channel, 440, 1, 2.5), 0.25 * 0.6)

    def test_applicationOfThePulseAudioProtocolIsHeard(self):
        with tone(440, "--pulse", "--to", SECOND_OUTPUT):
            path = recorder.record(self.folder, "--seconds", 3, "--no-microphone").saved()
        self.assert_decibels(usual_amplitude(sound.decoded(path)[0], 440, 1, 2.5), 0.25 * 0.9)

    def test_nothingPlayingIsSilenceOfFullLength(self):
        result = recorder.Recording(self.folder)
        result.watch.wait_for_fragments(2)
        temporary, = recorder.temporary_files(self.folder)
        durations = [float(stream["duration"]) for stream in sound.probe(temporary)["streams"]]
        self.assertAlmostEqual(durations[0], durations[1], delta=0.03)
        path = result.stop().saved()
        for channel in sound.decoded(path):
            self.assertGreater(len(channel) / sound.RATE, 10)
            self.assertLess(sound.peak(channel), 0.001)

    def test_clickPlayedAndHeardAtOnceIsInStepInBothTracks(self):
        with Clicks(self.folder.parent):
            recording = recorder.Recording(self.folder)
            recording.watch.wait_for_fragments(3)
            recording.kill()
        temporary, = recorder.temporary_files(self.folder)
        offsets = sorted(click_offsets(temporary), key=abs)[:15]  # a busy machine may shift a few
        self.assertEqual(len(offsets), 15)
        self.assertLess(max(map(abs, offsets)), 0.020)
        self.assertLess(max(offsets) - min(offsets), 0.011)


if __name__ == "__main__":
    main(Sound)

#!/usr/bin/python3
"""What was played and said is in the final file, at its level, for its time, and in step."""

import json
import subprocess
import sys

sys.dont_write_bytecode = True

import recorder  # noqa: E402
import sound  # noqa: E402
from case import RecordingCase, main  # noqa: E402
from clicks import Clicks, click_offsets  # noqa: E402
from sound import FIRST_OUTPUT, MICROPHONE, SECOND_OUTPUT, amplitude, tone, usual_amplitude  # noqa: E402


def move(name, output):
    """Moves an application's sound to another output, as a mixer does."""
    nodes = json.loads(subprocess.run(["pw-dump", "Node"], check=True, capture_output=True, text=True).stdout)
    node = next(node["id"] for node in nodes if node["info"]["props"].get("node.name") == name)
    subprocess.run(["pw-metadata", str(node), "target.object", output], check=True, stdout=subprocess.DEVNULL)


class Sound(RecordingCase):
    def test_twoOutputsAndTheMicrophoneAreInTheFileAtTheirGains(self):
        with tone(440, "--to", FIRST_OUTPUT), tone(1000, "--to", SECOND_OUTPUT), \
                tone(300, "--into", MICROPHONE):
            path = recorder.record(self.folder, "--seconds", 5).saved()
        self.assertRegex(path.name, r"^Vantoro-\d{4}-\d{2}-\d{2}-\d{6}\.m4a$")
        stream, = sound.probe(path)["streams"]
        self.assertEqual((stream["codec_name"], stream["sample_rate"], stream["channels"]), ("aac", "48000", 2))
        for channel in sound.decoded(path):
            self.assertAlmostEqual(len(channel) / sound.RATE, 5.0, delta=0.15)
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
                self.assertLess(amplitude(left, silent, 0.5, 1.5), 0.001, option)
                self.assertGreater(usual_amplitude(left, heard, 0.5, 1.5), 0.2, option)

    def test_applicationIsHeardForJustTheTimeThatItPlays(self):
        recording = recorder.Recording(self.folder, "--no-microphone")
        recording.wait_until_written()
        with tone(700, "--to", SECOND_OUTPUT, seconds=2) as player:
            player.wait(10)
        path = recording.stop().saved()
        (begin, end), = sound.sounding(sound.decoded(path)[0], 0.05)
        self.assertGreater(begin, 0.5)
        self.assertAlmostEqual(end - begin, 2.0, delta=0.1)

    def test_applicationThatMovesToAnotherOutputStaysInTheFile(self):
        with tone(700, "--to", FIRST_OUTPUT) as player:
            recording = recorder.Recording(self.folder, "--no-microphone")
            recording.wait_until_written()
            move(player.name, SECOND_OUTPUT)
            recording.watch.wait_for_fragments(1)
            path = recording.stop().saved()
        left, right = sound.decoded(path)
        self.assertGreater(len(left) / sound.RATE, 9)
        for channel in (left, right):
            # Short spans: an output has a clock of its own, to which the tone's pitch is fitted slowly.
            for begin in (0.2, 0.6, 3, 5, 7, 9):
                self.assert_decibels(amplitude(channel, 700, begin, begin + 0.2), 0.25 * 0.9)
        spans = sound.sounding(left, 0.05)
        self.assertLess(sum(end - begin for begin, end in spans), len(left) / sound.RATE + 0.02)
        self.assertGreater(sum(end - begin for begin, end in spans), len(left) / sound.RATE - 0.7)

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
        offsets = click_offsets(temporary)
        self.assertGreaterEqual(len(offsets), 18)
        self.assertLess(max(map(abs, offsets)), 0.020)
        self.assertLess(max(offsets) - min(offsets), 0.011)


if __name__ == "__main__":
    main(Sound)

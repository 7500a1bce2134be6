#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Players and outputs that start, end, move and vanish during a recording."""

import sys

sys.dont_write_bytecode = True

import comparison  # noqa: E402
import recorder  # noqa: E402
import scenes  # noqa: E402
import sound  # noqa: E402
from case import RecordingCase, main  # noqa: E402

SCENES = {scene.name: scene for scene in scenes.LIGHT}


class Scenes(RecordingCase):
    def assert_recorded_as_heard(self, name):
        difference, faults, _ = comparison.compare_fairly(SCENES[name])
        self.assertEqual(faults, [], difference)

    def test_soundThatBeginsAtOnceIsRecordedFromItsBeginning(self):
        self.assert_recorded_as_heard("a sound that begins at once, PulseAudio")

    def test_playerThatIsKilledIsRecordedToItsEnd(self):
        self.assert_recorded_as_heard("a player that is killed")

    def test_playerThatIsMovedIsRecordedAsHeard(self):
        self.assert_recorded_as_heard("a player that is moved to another output")

    def test_outputThatVanishesAndComesBackIsRecordedAsHeard(self):
        self.assert_recorded_as_heard("an output that vanishes and comes back")

    def test_stereoSoundOnASurroundOutputIsRecordedOnce(self):
        self.assert_recorded_as_heard("a stereo sound on an output of eight channels")

    def record_headset(self, *options):
        """Records a headset's output and microphone; another profile replaces both during the recording."""
        self.folder.mkdir()
        self.stage = comparison.Stage(self.folder)
        self.addCleanup(self.stage.__exit__)
        headset = [scenes.output(self.stage, "headset-music"), scenes.microphone(self.stage, "headset-microphone")]
        recording = recorder.Recording(self.folder, "--system-volume", 1, *options)
        recording.wait_until_written()
        player = scenes.start_player(self.stage, "--target", "headset-music")
        sound.wait_for_link(f"{scenes.PLAYER}:output_FL", "headset-music:playback_FL")
        for device in headset:
            device.remove()
        scenes.output(self.stage, "headset-call")
        scenes.microphone(self.stage, "headset-call-microphone")
        return recording, player

    def test_changeOfProfileThatTakesTheMicrophoneEndsTheRecordingSaved(self):
        recording, _ = self.record_headset("--microphone", "headset-microphone")
        result = recording.finish()
        self.assertIn("The microphone was disconnected.", result.errors)
        self.assertGreater(len(sound.decoded(result.saved())[0]) / sound.RATE, 1)

    def test_changeOfProfileThatLeavesTheMicrophoneIsRecordedOn(self):
        recording, player = self.record_headset("--microphone", sound.MICROPHONE)
        sound.wait_for_link(f"{scenes.PLAYER}:output_FL", f"{sound.FIRST_OUTPUT}:playback_FL")
        self.stage.wait_for_end(player)
        spans = sound.sounding(sound.decoded(recording.stop().saved())[0], 0.05)
        # All bursts except for some cycles at the change.
        self.assertGreater(sum(end - begin for begin, end in spans), 6)


if __name__ == "__main__":
    main(Scenes)

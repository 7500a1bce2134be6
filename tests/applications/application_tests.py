#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The recordings of applications that install quickly match the output's monitor."""

import sys
import unittest

sys.dont_write_bytecode = True

import bursts  # noqa: E402
import comparison  # noqa: E402
import jack  # noqa: E402
import modules  # noqa: E402
import players  # noqa: E402
from case import main  # noqa: E402

APPLICATIONS = {application.name: application for application in (*players.LIGHT, *jack.LIGHT, *modules.LIGHT)}


class Applications(unittest.TestCase):
    def assert_recorded_as_heard(self, name):
        difference, faults, _ = comparison.compare_fairly(APPLICATIONS[name], bursts.FEW_BURSTS,
                                                          (bursts.FEW_LEFT, bursts.FEW_RIGHT))
        self.assertEqual(faults, [], difference)

    def test_alsaIsRecordedAsHeard(self):
        self.assert_recorded_as_heard("aplay (ALSA)")

    def test_pulseAudioIsRecordedAsHeard(self):
        self.assert_recorded_as_heard("paplay (PulseAudio)")

    def test_monoIsRecordedAsHeard(self):
        self.assert_recorded_as_heard("pw-play, mono")

    def test_eightKilohertzAreRecordedAsHeard(self):
        self.assert_recorded_as_heard("pw-play, 8 kHz")

    def test_surroundIsRecordedAsHeard(self):
        self.assert_recorded_as_heard("pw-play, 5.1")

    def test_sdlIsRecordedAsHeard(self):
        self.assert_recorded_as_heard("ffplay, SDL's pulseaudio")

    def test_gStreamerIsRecordedAsHeard(self):
        self.assert_recorded_as_heard("GStreamer, pipewiresink")

    def test_jackClientIsRecordedAsHeard(self):
        self.assert_recorded_as_heard("GStreamer, jackaudiosink")

    def test_jackClientBehindAnotherIsRecordedAsHeard(self):
        self.assert_recorded_as_heard("a JACK client through another (ecasound)")

    def test_loopOfAnOutputIsRecordedOnce(self):
        self.assert_recorded_as_heard("module-loopback, from an output's monitor")

    def test_nativeLoopOfAnOutputIsRecordedOnce(self):
        self.assert_recorded_as_heard("pw-loopback, from an output's monitor")

    def test_combinedOutputsAreRecordedOnce(self):
        self.assert_recorded_as_heard("module-combine-sink, of both outputs")

    def test_remappedOutputIsRecordedOnce(self):
        self.assert_recorded_as_heard("module-remap-sink")

    def test_loopThatIsAnOutputIsRecordedOnce(self):
        self.assert_recorded_as_heard("pw-loopback, as an output")

    def test_microphoneLinkedToAnOutputIsRecordedAsHeard(self):
        self.assert_recorded_as_heard("a microphone linked to an output")


if __name__ == "__main__":
    main(Applications)

#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The comparison with an output's monitor finds each difference."""

import array
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True

import comparison  # noqa: E402,F401
import bursts  # noqa: E402
import measuring  # noqa: E402
import sound  # noqa: E402
from case import main  # noqa: E402

SIDES = (bursts.FEW_LEFT, bursts.FEW_RIGHT)


def heard():
    with tempfile.NamedTemporaryFile(suffix=".wav") as file:
        return sound.decoded(bursts.write(file.name, SIDES, bursts.FEW_BURSTS))


class Measuring(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.heard = heard()

    def faults(self, change, begin=12345):
        """The faults of a recording that starts before the monitor, with each channel changed."""
        recording = [array.array("f", [0.0] * begin + list(change(list(side)))) for side in self.heard]
        return measuring.faults(measuring.compare(self.heard, recording, SIDES))

    def test_sameSoundAtAnotherTimeHasNoFault(self):
        self.assertEqual(self.faults(lambda side: side), [])

    def test_recordingThatBeganLaterThanTheMonitorHasNoFault(self):
        self.assertEqual(self.faults(lambda side: side[7000:], begin=0), [])

    def test_sixthOfADecibelIsNoticed(self):
        self.assertEqual(self.faults(lambda side: [1.02 * sample for sample in side]), ["level", "bands"])

    def test_delayedCopyIsNoticedHoweverQuiet(self):
        def echo(side, delay=960, amount=0.03):
            return [sample + amount * (side[index - delay] if index >= delay else 0)
                    for index, sample in enumerate(side)]
        self.assertIn("bands", self.faults(echo))

    def test_delayedCopyReachesIntoThePauses(self):
        def echo(side, delay=4800):
            return [sample + 0.5 * (side[index - delay] if index >= delay else 0) for index, sample in enumerate(side)]
        self.assertIn("more than was heard", self.faults(echo))

    def test_missingHundredthOfASecondIsNoticed(self):
        def hole(side, begin=40000):
            return side[:begin] + [0.0] * 960 + side[begin + 960:]
        self.assertEqual(self.faults(hole), ["gaps"])

    def test_missingBeginningIsTold(self):
        begin = round(bursts.LEAD * bursts.RATE) + 4800
        recording = [array.array("f", [0.0] * begin + list(side[begin:])) for side in self.heard]
        self.assertAlmostEqual(measuring.compare(self.heard, recording, SIDES).onset, 0.1, delta=0.011)

    def test_swappedSidesAreNoticed(self):
        left, right = self.heard
        self.assertIn("bands", measuring.faults(measuring.compare(self.heard, [right, left], SIDES)))

    def test_burstThatLiesElsewhereIsNoticed(self):
        begin = round((bursts.LEAD + bursts.FEW_BURSTS[0] + bursts.PAUSE / 2) * bursts.RATE)
        self.assertEqual(self.faults(lambda side: side[:begin] + [0.0] * 1440 + side[begin:]), ["shift"])

    def test_silenceIsNoticed(self):
        self.assertEqual(self.faults(lambda side: [0.0] * len(side)), ["silent"])

    def test_monitorWithoutSoundProvesNothing(self):
        silence = [array.array("f", [0.0] * 48000)] * 2
        with self.assertRaises(measuring.NothingPlayed):
            measuring.compare(silence, self.heard, SIDES)


if __name__ == "__main__":
    main(Measuring)

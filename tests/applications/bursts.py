# SPDX-License-Identifier: GPL-3.0-or-later
"""The test sound for applications: bursts of many tones, with different tones in each channel.

A delayed copy makes some tones louder and others softer, whatever its delay, and reaches into the pauses. Every burst has
a different length, so two recordings of the sound can be aligned in only one way.
"""

import array
import math
import wave

RATE = 48000
LEFT = (110, 250, 430, 700, 1090, 1630, 2390, 3300, 4700, 6900, 9700, 13000)
RIGHT = (180, 330, 550, 880, 1330, 1970, 2830, 3900, 5700, 8200, 11300, 14500)
FEW_LEFT = LEFT[1:10:2]
FEW_RIGHT = RIGHT[1:10:2]
LOUDEST = 0.6
BURSTS = (0.90, 0.55, 1.15, 0.70, 0.45, 1.00, 0.60, 0.80)
FEW_BURSTS = (0.90, 0.55, 1.15)
PAUSE = 0.09
RAMP = 0.005
LEAD = 0.3  # players may cut off the beginning
TAIL = 1.0  # and the end


def burst(seconds, tones, rate):
    """One channel of a burst, with ramps that avoid clicks."""
    count = round(seconds * rate)
    amplitude = LOUDEST / len(tones)
    # Phases that avoid one high peak in the sum of many tones.
    phases = [math.pi * index * index / len(tones) for index in range(len(tones))]
    samples = [0.0] * count
    for tone, phase in zip(tones, phases):
        step = 2 * math.pi * tone / rate
        samples = [sample + amplitude * math.sin(step * index + phase) for index, sample in enumerate(samples)]
    ramp = round(RAMP * rate)
    for index in range(ramp):
        samples[index] *= index / ramp
        samples[-1 - index] *= index / ramp
    return samples


def write(path, sides=(LEFT, RIGHT), lengths=BURSTS, rate=RATE, lead=LEAD):
    """A sound file with one channel per entry; a channel without tones is silent."""
    pause = [0.0] * round(PAUSE * rate)
    channels = []
    for tones in sides:
        tones = [tone for tone in tones if tone < 0.44 * rate]
        longest = burst(max(lengths), tones, rate) if tones else [0.0] * round(max(lengths) * rate)
        samples = [0.0] * round(lead * rate)
        for length in lengths:
            samples += shortened(longest, round(length * rate), round(RAMP * rate)) + pause
        channels.append(samples + [0.0] * round(TAIL * rate))
    numbers = array.array("h", [round(32767 * sample) for frame in zip(*channels) for sample in frame])
    with wave.open(str(path), "wb") as file:
        file.setparams((len(sides), 2, rate, 0, "NONE", ""))
        file.writeframes(numbers.tobytes())
    return path


def shortened(samples, count, ramp):
    """The beginning of a burst, with its own ramp at the end."""
    if count == len(samples):
        return samples
    return samples[:count - ramp] + [sample * (ramp - index) / ramp
                                     for index, sample in enumerate(samples[count - ramp:count])]

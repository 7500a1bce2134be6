# SPDX-License-Identifier: GPL-3.0-or-later
"""Pictures of the screen, and what a user could make out in them."""

import collections
import struct
import zlib

from Xlib import X
from Xlib.display import Display

FARTHEST_NEIGHBOUR = 8  # pixels between two parts of one thing


class Picture:
    """Rows of red, green and blue bytes."""

    def __init__(self, width, height, pixels):
        self.width = width
        self.height = height
        self._pixels = pixels

    def pixel(self, x, y):
        begin = 3 * (y * self.width + x)
        return tuple(self._pixels[begin:begin + 3])

    def pixels_in(self, place):
        left, top, right, bottom = place
        return [self.pixel(x, y) for y in range(max(0, top), min(self.height, bottom))
                for x in range(max(0, left), min(self.width, right))]

    def differences(self, other):
        """The positions of the pixels that differ."""
        row = 3 * self.width
        found = set()
        for y in range(self.height):
            here, there = (picture._pixels[y * row:(y + 1) * row] for picture in (self, other))
            if here != there:
                found.update((x, y) for x in range(self.width) if here[3 * x:3 * x + 3] != there[3 * x:3 * x + 3])
        return found

    def part(self, place):
        left, top, right, bottom = place
        rows = [self._pixels[3 * (y * self.width + left):3 * (y * self.width + right)] for y in range(top, bottom)]
        return Picture(right - left, bottom - top, b"".join(rows))

    def enlarged(self, factor):
        rows = (b"".join(bytes(self.pixel(x, y)) * factor for x in range(self.width)) * factor
                for y in range(self.height))
        return Picture(self.width * factor, self.height * factor, b"".join(rows))

    def save(self, path):
        row = 3 * self.width
        lines = b"".join(b"\0" + self._pixels[y * row:(y + 1) * row] for y in range(self.height))
        chunks = ((b"IHDR", struct.pack(">IIBBBBB", self.width, self.height, 8, 2, 0, 0, 0)),
                  (b"IDAT", zlib.compress(lines)), (b"IEND", b""))
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(b"\x89PNG\r\n\x1a\n" + b"".join(
            struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))
            for kind, content in chunks))


def of_screen():
    """What the X server shows now."""
    display = Display()
    try:
        root = display.screen().root
        size = root.get_geometry()
        shown = root.get_image(0, 0, size.width, size.height, X.ZPixmap, 0xffffffff).data
    finally:
        display.close()
    pixels = bytearray(3 * size.width * size.height)
    for channel in range(3):
        pixels[channel::3] = shown[2 - channel::4]
    return Picture(size.width, size.height, bytes(pixels))


def places(positions):
    """The rectangles (left, top, right, bottom) around positions that lie together, from left to right."""
    remaining, found = set(positions), []
    while remaining:
        pending = [remaining.pop()]
        together = list(pending)
        while pending:
            x, y = pending.pop()
            near = {(x + right, y + down) for right in range(-FARTHEST_NEIGHBOUR, FARTHEST_NEIGHBOUR + 1)
                    for down in range(-FARTHEST_NEIGHBOUR, FARTHEST_NEIGHBOUR + 1)} & remaining
            remaining -= near
            pending += near
            together += near
        across, down = zip(*together)
        found.append((min(across), min(down), max(across) + 1, max(down) + 1))
    return sorted(found)


def _luminance(color):
    linear = [value / 12.92 if value <= 0.04045 else ((value + 0.055) / 1.055) ** 2.4
              for value in (channel / 255 for channel in color)]
    return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2]


def contrast(first, second):
    """As web pages' accessibility rules define it, from 1 to 21."""
    darker, brighter = sorted(map(_luminance, (first, second)))
    return (brighter + 0.05) / (darker + 0.05)


def background(pixels):
    """The most frequent colour."""
    return collections.Counter(pixels).most_common(1)[0][0]

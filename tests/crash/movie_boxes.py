# SPDX-License-Identifier: GPL-3.0-or-later
"""Finds the whole fragments of a movie; shares no code with the program's reader."""

import struct


def boxes(data, begin=0, end=None):
    """Type, content and end of each whole box between two offsets."""
    end = len(data) if end is None else end
    while begin + 8 <= end:
        size, kind = struct.unpack_from(">I4s", data, begin)
        header = 8
        if size == 1 and begin + 16 <= end:  # 64-bit size, or size unknown when writing began
            size, = struct.unpack_from(">Q", data, begin + 8)
            header = 16
        if size < header or begin + size > end:
            return
        yield kind.decode("latin-1"), begin + header, begin + size
        begin += size


def whole_frames(data):
    """The frames in the whole fragments of each track, without the coder's priming of 1024."""
    frames = {}
    fragment = None
    for kind, content, end in boxes(data):
        if kind == "moof":
            fragment = fragment_frames(data, content, end)
        elif kind == "mdat" and fragment is not None:
            for track, count in fragment.items():
                frames[track] = frames.get(track, 0) + count
            fragment = None
    return {track: max(0, count - 1024) for track, count in frames.items()}


def ends_torn(data):
    """Whether the file ends inside a box."""
    return max((end for _, _, end in boxes(data)), default=0) < len(data)


def fragment_frames(data, begin, end):
    frames = {}
    for kind, content, traf_end in boxes(data, begin, end):
        if kind != "traf":
            continue
        track, duration = 0, 1024
        for inner, at, _ in boxes(data, content, traf_end):
            if inner == "tfhd":
                flags, track = struct.unpack_from(">II", data, at)
                position = at + 8 + (8 if flags & 1 else 0) + (4 if flags & 2 else 0)
                if flags & 8:
                    duration, = struct.unpack_from(">I", data, position)
            elif inner == "trun":
                frames[track] = frames.get(track, 0) + run_frames(data, at, duration)
    return frames


def run_frames(data, at, duration):
    flags, count = struct.unpack_from(">II", data, at)
    position = at + 8 + (4 if flags & 1 else 0) + (4 if flags & 4 else 0)
    width = 4 * bin(flags & 0xF00).count("1")
    if not flags & 0x100:
        return count * duration
    return sum(struct.unpack_from(">I", data, position + index * width)[0] for index in range(count))


def packets(data):
    """The packets of a movie with one track, from whole boxes only."""
    return b"".join(data[content:end] for kind, content, end in boxes(data) if kind == "mdat")

# SPDX-License-Identifier: GPL-3.0-or-later
"""The environment that makes the disk stop responding for a program."""

from pathlib import Path

from recorder import IN_CREATE, PROGRAM, FolderWatch

LIBRARY = Path(PROGRAM).parent / "tests/support/libhanging_calls.so"


class HangingDisk:
    """From the given call on, calls on the folder never return."""

    def __init__(self, folder, place, call, time=1):
        self._mark = Path(place) / "hangs"
        self._watch = FolderWatch(place)
        self.environment = {"LD_PRELOAD": str(LIBRARY), "VANTORO_HANG_CALL": call, "VANTORO_HANG_FROM": str(time),
                            "VANTORO_HANG_UNDER": str(folder), "VANTORO_HANG_MARK": str(self._mark)}

    def close(self):
        self._watch.close()

    def wait_until_it_hangs(self):
        self._watch.wait_for(lambda mask, name: mask & IN_CREATE and name == self._mark.name, 40)

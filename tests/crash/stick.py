# SPDX-License-Identifier: GPL-3.0-or-later
"""File systems of USB sticks in an image file, with user-space drivers: tests can pull them at any moment."""

import os
import select
import subprocess
import time
from pathlib import Path

MEGABYTES = 64
SECONDS_TO_MOUNT = 20


def obstacle(*devices):
    """What this machine lacks for the test; usually nothing."""
    missing = [device for device in devices if not Path(device).exists()]
    return f"cannot run: this machine has no {' and no '.join(missing)}" if missing else None


class Stick:
    """A stick that can be plugged in, pulled and plugged in again. `path`: its mount point."""

    def __init__(self, folder):
        self._image = folder / f"{self.NAME}.img"
        self.path = folder / self.NAME
        self.path.mkdir()
        with open(self._image, "wb") as image:
            image.truncate(MEGABYTES << 20)
        self._run(*self.FORMAT, self._image)
        self._log = folder / f"{self.NAME}.log"
        self._driver = None
        self.plug_in()

    def plug_in(self):
        with open("/proc/self/mounts", encoding="utf-8") as mounts:
            changes = select.poll()
            changes.register(mounts, select.POLLERR | select.POLLPRI)
            self._driver = self._start_driver()
            deadline = time.monotonic() + SECONDS_TO_MOUNT
            while not os.path.ismount(self.path):
                if time.monotonic() > deadline or self._driver.poll() is not None:
                    self._started()
                    raise AssertionError(f"{self.NAME} could not be mounted: {self._log.read_text()}")
                changes.poll(200)
                mounts.seek(0)
                mounts.read()
        self._started()

    def pull(self):
        """Makes everything on it inaccessible, open files included."""
        self._driver.kill()
        self._driver.wait()
        self._run("umount", "-l", self.path)

    def take_away(self):
        """A forced unmount, as by a desktop: open files continue, without a path."""
        self._run("umount", "-l", self.path)

    def wait_until_gone(self):
        """After a forced unmount: returns when no process has a file on it open."""
        self._driver.wait(SECONDS_TO_MOUNT)

    def close(self):
        if os.path.ismount(self.path):
            self._run("umount", "-l", self.path)
        try:
            self._driver.wait(SECONDS_TO_MOUNT)
        except subprocess.TimeoutExpired:
            self._driver.kill()
            self._driver.wait()

    def _started(self):
        """Work after the driver's start."""

    @staticmethod
    def _run(*command):
        result = subprocess.run([str(word) for word in command], capture_output=True, text=True, check=False)
        if result.returncode != 0:
            raise AssertionError(f"{command} failed: {result.stdout}{result.stderr}")
        return result.stdout.strip()

    def _open_driver(self, *command):
        with open(self._log, "wb") as log:
            return subprocess.Popen([str(word) for word in command], stdin=subprocess.DEVNULL, stdout=log, stderr=log)


class ExFat(Stick):
    NAME = "exfat"
    NEEDS = ("/dev/fuse", "/dev/loop-control")
    FORMAT = ("mkfs.exfat",)

    def _start_driver(self):
        # The driver accepts only block devices; this one vanishes when the driver releases it.
        device = self._run("losetup", "--find", "--show", self._image)
        self._device = device
        # What version 2 of the driver's library must be told about a folder with files, version 3 does unasked.
        options = () if "libfuse3" in self._run("mount.exfat-fuse", "-V") else ("-o", "nonempty")
        return self._open_driver("mount.exfat-fuse", "-d", *options, device, self.path)

    def _started(self):
        self._run("losetup", "--detach", self._device)


class Ntfs(Stick):
    NAME = "ntfs"
    NEEDS = ("/dev/fuse",)
    FORMAT = ("mkntfs", "--force", "--fast", "--quiet")

    def _start_driver(self):
        return self._open_driver("ntfs-3g", "-o", "no_detach", self._image, self.path)

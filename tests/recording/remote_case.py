# SPDX-License-Identifier: GPL-3.0-or-later
"""The base of the cases that control a recording of another process over the session bus."""

import json

import recorder
from case import RecordingCase

ENGLISH = ("--language", "en")
SECONDS_TO_ANSWER = 30


def remote(command, *arguments, **options):
    return recorder.run(command, *ENGLISH, *arguments, **options)


def status():
    return json.loads(remote("status", "--json").output)


class RemoteCase(RecordingCase):
    def record(self, *arguments, folder=None, **options):
        """A recording that other processes can find, and whose first second is on disk."""
        recording = recorder.Recording(folder or self.folder, *arguments, **options)
        recording.wait_until_written()
        return recording

#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The user's session ends during a recording: the recording is saved."""

import os
import pty
import sys
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "recording"))

import recorder  # noqa: E402
import sound  # noqa: E402
from case import RecordingCase, main  # noqa: E402


class EndedSession(RecordingCase):
    def test_terminalThatIsClosedSavesTheRecording(self):
        keyboard, terminal = pty.openpty()
        with sound.tone(440):
            recording = recorder.Recording(
                self.folder, preexec_fn=lambda: (os.setsid(), os.close(os.open(os.ttyname(terminal), os.O_RDWR))))
            recording.wait_until_written()
            os.close(terminal)
            os.close(keyboard)
            result = recording.finish()
        left, _ = sound.decoded(result.saved())
        self.assertGreater(sound.usual_amplitude(left, 440, 0.2, 0.9), 0.2)
        self.assertEqual(recorder.temporary_files(self.folder), [])


if __name__ == "__main__":
    main(EndedSession)

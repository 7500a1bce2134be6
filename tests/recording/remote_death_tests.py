#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Commands that wait for a recording of another process whose disk hangs while it saves."""

import os
import signal
import subprocess
import sys

sys.dont_write_bytecode = True

import recorder  # noqa: E402
from bus_monitor import FirstCall  # noqa: E402
from case import main  # noqa: E402
from hanging_disk import HangingDisk  # noqa: E402
from remote_case import ENGLISH, SECONDS_TO_ANSWER, RemoteCase, status  # noqa: E402


class RemoteDeath(RemoteCase):
    def stopping(self, recording):
        """A `stop` whose call has arrived at the recording, which saves for ever."""
        call = FirstCall("Stop")
        self.addCleanup(call.close)
        process = subprocess.Popen([recorder.PROGRAM, "stop", *ENGLISH], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                   text=True)
        call.wait(SECONDS_TO_ANSWER)
        return process

    def hanging_recording(self):
        """A recording whose disk will hang when the recording is moved to its final name."""
        place = self.folder.parent
        self.folder.mkdir()
        disk = HangingDisk(self.folder, place, "rename")
        self.addCleanup(disk.close)
        return disk, self.record(env={**os.environ, **disk.environment})

    def test_recorderThatIsKilledWhileItSavesIsTold(self):
        disk, recording = self.hanging_recording()
        process = self.stopping(recording)
        disk.wait_until_it_hangs()
        recording.kill()
        output, errors = process.communicate(timeout=SECONDS_TO_ANSWER)
        self.assertEqual((process.returncode, output), (1, ""))
        self.assertIn("Vantoro ended before it answered.", errors)
        recorder.run("recover", "--folder", self.folder).saved()

    def test_interruptedStopStopsTheRecordingAllTheSameAndSaysWhereItWillBe(self):
        disk, recording = self.hanging_recording()
        for number in signal.SIGINT, signal.SIGTERM:
            process = self.stopping(recording)
            disk.wait_until_it_hangs() if number == signal.SIGINT else None
            process.send_signal(number)
            output, errors = process.communicate(timeout=SECONDS_TO_ANSWER)
            self.assertEqual((process.returncode, output), (1, ""))
            self.assertEqual(errors, f"The recording was stopped. It will be saved in {self.folder}.\n")
        self.assertEqual(status()["state"], "processing")
        recording.kill()


if __name__ == "__main__":
    main(RemoteDeath)
